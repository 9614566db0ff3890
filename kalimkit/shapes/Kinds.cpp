#include "kalimkit/shapes/Kinds.h"

#include <array>

#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawComment.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MDrawRoundedRect.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

std::span<const ToolClass* const> kinds() {
    static const std::array all{
        &MDrawRect::Class(),     &MDrawRoundedRect::Class(), &MDrawEllipse::Class(),
        &MDrawText::Class(),     &MDrawFreeline::Class(),    &MDrawMosiac::Class(),
        &MDrawLine::Class(),     &MDrawArrow::Class(),       &MDrawFatArrow::Class(),
        &MDrawPolyline::Class(), &MDrawAngle::Class(),       &MDrawArc::Class(),
        &MDrawComment::Class()};
    return all;
}

}  // namespace kalim
