#include "kalimkit/canvas/ToolDescription.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "kalimkit/theme/ColorName.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

// Which third of a length from `start` on a place is in, 0 to 2.
int thirdAt(double place, double start, double length) {
    if (!(length > 0)) return 1;
    const double share = std::clamp((place - start) / length, 0.0, 1.0);
    return std::min(static_cast<int>(share * 3), 2);
}

const char* placeOf(gfx::Point middle, const gfx::Rect& content) {
    static constexpr const char* places[3][3] = {
        {"{shape}，左上", "{shape}，上方", "{shape}，右上"},
        {"{shape}，左侧", "{shape}，中间", "{shape}，右侧"},
        {"{shape}，左下", "{shape}，下方", "{shape}，右下"}};
    return places[thirdAt(middle.y, content.minY(), content.size.height)]
                 [thirdAt(middle.x, content.minX(), content.size.width)];
}

}  // namespace

std::string describeTool(const MDrawTool& tool, const gfx::Rect& content, int quarterTurns) {
    const auto turn = gfx::AffineTransform::quarterTurn(quarterTurns);
    std::string description = ui::localText(tool.label(), {{"color", colorName(tool.color())}});
    if (const std::optional<std::string> words = tool.spokenWords())
        description = ui::localText("{shape}：{text}", {{"shape", description}, {"text", *words}});
    return ui::localText(placeOf(turn.apply(tool.frame().center()), turn.apply(content)),
                         {{"shape", description}});
}

}  // namespace kalim
