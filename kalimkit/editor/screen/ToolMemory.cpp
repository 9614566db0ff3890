#include "kalimkit/editor/screen/ToolMemory.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"

namespace kalim {

namespace {

constexpr const char* lastKey = "tool.last";
constexpr double thickest = 100;

std::string keyOf(unsigned pen, std::string_view what) {
    const Pen* const known = penNumbered(pen);
    if (!known || known->name.empty()) return {};
    return "tool." + std::string(known->name) + "." + std::string(what);
}

// A number of few digits needs no reader: both sides of the division are exact.
std::optional<double> shortNumber(std::string_view text) {
    constexpr std::size_t mostDigits = 15;
    if (text.empty() || text.size() > mostDigits || text.front() == '.' || text.back() == '.' ||
        (text.size() > 1 && text.front() == '0' && text[1] != '.')) {
        return std::nullopt;
    }
    double digits = 0;
    double scale = 0;
    for (const char letter : text) {
        if (letter == '.' && scale == 0) {
            scale = 1;
        } else if (letter >= '0' && letter <= '9') {
            digits = digits * 10 + (letter - '0');
            scale *= 10;
        } else {
            return std::nullopt;
        }
    }
    return scale == 0 ? digits : digits / scale;
}

// Longer ones are read once the code for it is there.
std::optional<double> numberOf(const std::string& text) {
    if (const auto number = shortNumber(text)) return number;
    if (!ui::Environment::current().attachment<ui::LateCode>().isThere(nullptr))
        return std::nullopt;
    const JsonValue value = parseJson(text).value;
    return value.number() ? std::optional(*value.number()) : std::nullopt;
}

std::string textOf(double number) {
    return dumpJson(JsonValue(number));
}

std::optional<std::string> settingOf(unsigned pen, std::string_view what) {
    const std::string key = keyOf(pen, what);
    return key.empty() ? std::nullopt : ui::Environment::current().userSetting(key);
}

void set(unsigned pen, std::string_view what, const std::string& text) {
    const std::string key = keyOf(pen, what);
    ui::Environment& environment = ui::Environment::current();
    if (!key.empty() && environment.userSetting(key) != text) environment.setUserSetting(key, text);
}

// As remembered, or what the pen begins with.
std::optional<gfx::Color> colorOf(unsigned pen) {
    const auto text = settingOf(pen, "color");
    if (const auto color = text ? gfx::Color::fromHex(*text) : std::nullopt) return color;
    const Pen* const known = penNumbered(pen);
    return known ? gfx::Color::fromHex(known->firstColor) : std::nullopt;
}

std::optional<ToolPropertyValue> valueOf(const ToolProperty& property, const std::string& text) {
    const bool isNumber =
        property.type == ToolProperty::Type::Number || property.type == ToolProperty::Type::Switch;
    if (!isNumber) return text;
    const auto number = numberOf(text);
    return number ? std::optional<ToolPropertyValue>(*number) : std::nullopt;
}

}  // namespace

void ToolMemory::store(unsigned pen, const MDrawView& canvas) const {
    if (!_isOn) return;
    if (canvas.color()) set(pen, "color", canvas.color()->hex());
    set(pen, "width", textOf(canvas.lineWidth()));
    set(pen, "drawType", std::to_string(canvas.drawType()));
    // Those of a selection are another tool's.
    if (canvas.hasSelectedTools()) return;
    for (const ToolProperty* const property : canvas.toolProperties()) {
        const auto value = canvas.toolProperty(std::string(property->name));
        if (!value || property->isHidden) continue;
        const double* const number = std::get_if<double>(&*value);
        set(pen, property->name, number ? textOf(*number) : std::get<std::string>(*value));
    }
}

void ToolMemory::storeLast(unsigned pen) const {
    const Pen* const known = penNumbered(pen);
    if (!_isOn || !known || known->name.empty()) return;
    ui::Environment::current().setUserSetting(lastKey, std::string(known->name));
}

void ToolMemory::leave(unsigned pen, const MDrawView& canvas) {
    const Pen* const known = penNumbered(pen);
    const bool isCommon = known && known->firstColor.empty() && !canvas.hasSelectedTools();
    if (_isOn && isCommon) _commonColor = canvas.color();
}

ToolMemory::Look ToolMemory::lookOf(unsigned pen, const MDrawView& canvas) const {
    Look look;
    if (!_isOn) return look;
    if (const auto color = colorOf(pen)) look.color = gfx::makeColor(*color);
    if (!look.color) look.color = _commonColor;
    if (const auto text = settingOf(pen, "width")) {
        const auto width = numberOf(*text);
        if (width && *width > 0 && *width <= thickest) look.lineWidth = width;
    }
    if (const auto text = settingOf(pen, "drawType")) {
        const auto style = numberOf(*text);
        if (style && *style >= 0 && *style <= thickest)
            look.drawType = static_cast<std::uint64_t>(*style);
    }
    for (const ToolProperty* const property : canvas.toolProperties()) {
        const auto text = settingOf(pen, property->name);
        if (!text || property->isHidden) continue;
        if (const auto value = valueOf(*property, *text))
            look.properties.emplace_back(std::string(property->name), *value);
    }
    return look;
}

std::optional<unsigned> ToolMemory::lastPen() const {
    const auto name = _isOn ? ui::Environment::current().userSetting(lastKey) : std::nullopt;
    const Pen* const pen = name ? penIdentified(*name) : nullptr;
    return pen && pen->number != EditorPenCrop ? std::optional(pen->number) : std::nullopt;
}

}  // namespace kalim
