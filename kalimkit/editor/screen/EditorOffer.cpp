#include "kalimkit/editor/screen/EditorOffer.h"

#include <algorithm>
#include <utility>

#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/theme/HexColor.h"

namespace kalim {

namespace {

constexpr double thinnest = 1;
constexpr double thickest = 100;

}  // namespace

std::optional<std::string> EditorOffer::setPens(const std::vector<std::string>& identifiers) {
    std::vector<unsigned> numbers;
    for (const std::string& identifier : identifiers) {
        const Pen* const pen = penIdentified(identifier);
        if (!pen) return "there is no pen \"" + identifier + "\"";
        if (std::ranges::find(numbers, pen->number) == numbers.end())
            numbers.push_back(pen->number);
    }
    _pens = numbers.empty() ? std::nullopt : std::optional(std::move(numbers));
    return std::nullopt;
}

void EditorOffer::setColors(std::vector<gfx::ColorRef> colors) {
    std::erase(colors, nullptr);
    _colors = std::move(colors);
}

void EditorOffer::setWidths(const std::vector<double>& widths) {
    _widths.clear();
    for (const double width : widths) {
        if (width >= thinnest && width <= thickest) _widths.push_back(width);
    }
}

void EditorOffer::addButton(HostButton button) {
    const auto place = std::ranges::find(_buttons, button.identifier, &HostButton::identifier);
    if (place != _buttons.end()) {
        *place = std::move(button);
    } else {
        _buttons.push_back(std::move(button));
    }
}

void EditorOffer::removeButton(std::string_view identifier) {
    std::erase_if(_buttons, [&](const HostButton& each) { return each.identifier == identifier; });
}

std::vector<gfx::ColorRef> EditorOffer::colors() const {
    if (hasColors()) return _colors;
    std::vector<gfx::ColorRef> usual;
    for (const std::string_view hex : editorColors())
        usual.push_back(colorWithHexString(hex));
    return usual;
}

std::vector<double> EditorOffer::widths() const {
    if (hasWidths()) return _widths;
    std::vector<double> usual;
    for (const PenSize& size : penSizes())
        usual.push_back(size.lineWidth);
    return usual;
}

}  // namespace kalim
