#include "kalimkit/canvas/ToolDescription.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "kalimkit/theme/ColorName.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Stands for what is put in; texts of other languages may have it at another place.
constexpr std::string_view gap = "{}";

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

std::string filledText(const char* pattern, const std::vector<std::string>& texts) {
    std::string result = ui::Environment::current().localizedString(pattern);
    std::size_t from = 0;
    for (const std::string& text : texts) {
        const std::size_t place = result.find(gap, from);
        if (place == std::string::npos) break;
        result.replace(place, gap.size(), text);
        from = place + text.size();
    }
    return result;
}

std::string describeTool(const MDrawTool& tool, const gfx::Rect& content, int quarterTurns) {
    const auto turn = gfx::AffineTransform::quarterTurn(quarterTurns);
    std::string description = filledText(tool.label(), {colorName(tool.color())});
    if (const std::optional<std::string> words = tool.spokenWords())
        description += ui::Environment::current().localizedString("：") + *words;
    return filledText(placeOf(turn.apply(tool.frame().center()), turn.apply(content)),
                      {description});
}

}  // namespace kalim
