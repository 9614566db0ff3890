#include "kalimkit/shapes/Kit.h"

#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawPolyline.h"

namespace kalim {

std::vector<KitTool> kit() {
    return {
        {32, &MDrawFatArrow::Class()},
        {33, &MDrawPolyline::Class()},
        {34, &MDrawAngle::Class()},
        {35, &MDrawArc::Class()},
    };
}

}  // namespace kalim
