#include "kalimkit/canvas/ToolDescription.h"

#include <algorithm>
#include <string_view>

#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawComment.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawRoundedRect.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/theme/ColorName.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Stands for what is put in; texts of other languages may have it at another place.
constexpr std::string_view gap = "{}";

std::string filled(const char* pattern, const std::string& text) {
    std::string result = ui::Environment::current().localizedString(pattern);
    const std::size_t place = result.find(gap);
    return place == std::string::npos ? result : result.replace(place, gap.size(), text);
}

// With a gap for the colour, where there is one.
const char* kindOf(const ToolClass& toolClass) {
    struct Kind {
        const ToolClass* toolClass;
        const char* name;
    };
    static const Kind kinds[] = {
        {&MDrawRect::Class(), "{}矩形"},     {&MDrawRoundedRect::Class(), "{}圆角矩形"},
        {&MDrawEllipse::Class(), "{}圆形"},  {&MDrawText::Class(), "{}文字"},
        {&MDrawFreeline::Class(), "{}涂鸦"}, {&MDrawMosiac::Class(), "马赛克"},
        {&MDrawLine::Class(), "{}直线"},     {&MDrawArrow::Class(), "{}箭头"},
        {&MDrawFatArrow::Class(), "{}箭头"}, {&MDrawPolyline::Class(), "{}多边形"},
        {&MDrawAngle::Class(), "{}角"},      {&MDrawArc::Class(), "{}弧线"},
        {&MDrawComment::Class(), "{}批注"},
    };
    for (const ToolClass* known = &toolClass; known; known = known->base) {
        const auto* const kind = std::ranges::find(kinds, known, &Kind::toolClass);
        if (kind != std::end(kinds)) return kind->name;
    }
    return "{}图形";
}

// Which third of a length from `start` on a place is in, 0 to 2.
int thirdAt(double place, double start, double length) {
    if (!(length > 0)) return 1;
    const double share = std::clamp((place - start) / length, 0.0, 1.0);
    return std::min(static_cast<int>(share * 3), 2);
}

const char* placeOf(gfx::Point middle, const gfx::Rect& content) {
    static constexpr const char* places[3][3] = {{"{}，左上", "{}，上方", "{}，右上"},
                                                 {"{}，左侧", "{}，中间", "{}，右侧"},
                                                 {"{}，左下", "{}，下方", "{}，右下"}};
    return places[thirdAt(middle.y, content.minY(), content.size.height)]
                 [thirdAt(middle.x, content.minX(), content.size.width)];
}

}  // namespace

std::string describeTool(const MDrawTool& tool, const gfx::Rect& content) {
    std::string description = filled(kindOf(tool.toolClass()), colorName(tool.color()));
    if (tool.toolClass().isKindOf(MDrawText::Class())) {
        description += ui::Environment::current().localizedString("：");
        description += static_cast<const MDrawText&>(tool).text();
    }
    return filled(placeOf(tool.frame().center(), content), description);
}

}  // namespace kalim
