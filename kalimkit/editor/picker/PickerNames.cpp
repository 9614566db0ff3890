#include "kalimkit/editor/picker/PickerNames.h"

#include <array>
#include <cstddef>

#include "kalimkit/theme/ColorName.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

template <std::size_t count>
std::string wordIn(const std::array<const char*, count>& words, unsigned index) {
    return index < count ? words.at(index) : "";
}

template <std::size_t count>
std::string nameIn(const std::array<const char*, count>& names, unsigned index) {
    const std::string name = wordIn(names, index);
    return name.empty() ? name : ui::Environment::current().localizedString(name);
}

}  // namespace

std::string penName(unsigned pen) {
    static constexpr std::array names{"马赛克", "文字", "涂鸦", "矩形", "直线",
                                      "圆形",   "箭头", "矩形", "裁剪"};
    return nameIn(names, pen);
}

std::string sizeName(unsigned size) {
    static constexpr std::array names{"极细", "细", "中等", "粗", "极粗"};
    return nameIn(names, size);
}

std::string choiceName(const TesselConfig& config) {
    static constexpr std::array shapeNames{"矩形", "圆形", "直线"};
    switch (config.type()) {
        case 0:
            return colorName(config.color());
        case 1:
            return sizeName(config.size());
        case 2:
            return penName(config.pen());
        default:
            return nameIn(shapeNames, config.shape());
    }
}

std::string kindName(unsigned type) {
    static constexpr std::array names{"颜色", "粗细", "画笔", "形状"};
    return nameIn(names, type);
}

std::string dotIconName(const TesselConfig& config) {
    static constexpr std::array pens{
        "icon_tool_mosaic",    "icon_tool_text",      "icon_tool_graffiti",
        "icon_tool_rectangle", "icon_tool_line",      "icon_tool_circle",
        "icon_tool_arrow",     "icon_tool_rectangle", "icon_tool_cut"};
    static constexpr std::array shapes{"icon_tool_shape_rectangle", "icon_tool_shape_circle",
                                       "icon_tool_shape_line"};
    switch (config.type()) {
        case 2:
            return wordIn(pens, config.pen());
        case 3:
            return wordIn(shapes, config.shape());
        default:
            return {};
    }
}

std::string penIconName(unsigned pen, unsigned size) {
    static constexpr std::array pens{"mosaic", "text",   "graffiti", "rectangle",
                                     "line",   "circle", "arrow"};
    static constexpr std::array sizes{"xsmall", "small", "medium", "large", "xlarge"};
    const std::string word = wordIn(pens, pen);
    const std::string sizeWord = wordIn(sizes, size);
    if (pen == mosaicPen) return "icon_pen_" + word;
    return word.empty() || sizeWord.empty() ? "" : "icon_pen_" + word + "_" + sizeWord;
}

}  // namespace kalim
