#include "kalimkit/editor/picker/PickerNames.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "kalimkit/theme/ColorName.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

std::string localized(std::string_view text) {
    return text.empty() ? std::string()
                        : ui::Environment::current().localizedString(std::string(text));
}

}  // namespace

std::string penName(unsigned pen) {
    const Pen* const known = penNumbered(pen);
    return known ? ui::hostText(known->text, known->english) : "";
}

std::string sizeName(unsigned size) {
    return size < penSizes().size() ? localized(penSizes()[size].text) : "";
}

std::string hidingStyleName(std::uint64_t drawType) {
    const HidingStyle* const style = hidingStyleOf(drawType);
    return style ? localized(style->text) : "";
}

std::string choiceName(const TesselConfig& config) {
    switch (config.type()) {
        case 0:
            return colorName(config.color());
        case 1:
            if (config.hidingStyle()) return hidingStyleName(*config.hidingStyle());
            return sizeName(config.size());
        case 2:
            return penName(config.pen());
        default:
            const Pen* const pen = penOfShape(config.shape());
            return pen ? ui::hostText(pen->text, pen->english) : "";
    }
}

std::string kindName(unsigned type) {
    static constexpr std::array<std::string_view, 4> names{"颜色", "粗细", "画笔", "形状"};
    return type < names.size() ? localized(names[type]) : "";
}

std::string hidingName() {
    return localized("遮盖方式");
}

std::string dotIconName(const TesselConfig& config) {
    if (config.type() == 1 && config.hidingStyle()) {
        const HidingStyle* const style = hidingStyleOf(*config.hidingStyle());
        return style ? "icon_hide_" + std::string(style->icon) : "";
    }
    const bool isShape = config.type() == 3;
    if (!isShape && config.type() != 2) return {};
    const Pen* const pen = isShape ? penOfShape(config.shape()) : penNumbered(config.pen());
    if (!pen) return {};
    return (isShape ? "icon_tool_shape_" : "icon_tool_") + std::string(pen->icon);
}

std::string penIconName(unsigned pen, unsigned size) {
    const Pen* const known = penNumbered(pen);
    if (known && known->showsToolIcon) return "icon_tool_" + std::string(known->icon);
    if (!known || !known->toolType) return {};
    const std::string name = "icon_pen_" + std::string(known->icon);
    if (known->hasOneIcon) return name;
    return size < penSizes().size() ? name + "_" + std::string(penSizes()[size].icon) : "";
}

}  // namespace kalim
