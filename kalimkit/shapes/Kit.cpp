#include "kalimkit/shapes/Kit.h"

#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawCallout.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawHighlighter.h"
#include "kalimkit/shapes/MDrawHighlighterBox.h"
#include "kalimkit/shapes/MDrawMagnifier.h"
#include "kalimkit/shapes/MDrawNumber.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawSpotlight.h"
#include "kalimkit/shapes/MDrawStamp.h"

namespace kalim {

std::vector<KitTool> kit() {
    return {
        {20, &MDrawNumber::Class()},      {21, &MDrawCallout::Class()},
        {22, &MDrawHighlighter::Class()}, {23, &MDrawHighlighterBox::Class()},
        {24, &MDrawMagnifier::Class()},   {25, &MDrawSpotlight::Class()},
        {26, &MDrawStamp::Class()},       {32, &MDrawFatArrow::Class()},
        {33, &MDrawPolyline::Class()},    {34, &MDrawAngle::Class()},
        {35, &MDrawArc::Class()},
    };
}

}  // namespace kalim
