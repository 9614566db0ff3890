#include "kalimkit/shapes/Kit.h"

#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawCallout.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawNumber.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawStamp.h"

namespace kalim {

std::vector<KitTool> kit() {
    return {
        {20, &MDrawNumber::Class()},   {21, &MDrawCallout::Class()},  {26, &MDrawStamp::Class()},
        {32, &MDrawFatArrow::Class()}, {33, &MDrawPolyline::Class()}, {34, &MDrawAngle::Class()},
        {35, &MDrawArc::Class()},
    };
}

}  // namespace kalim
