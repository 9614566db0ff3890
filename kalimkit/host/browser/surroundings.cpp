#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kalimkit/backend/html/PackedColor.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/host/browser/PageEditor.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/tool/ToolProperty.h"
#include "kalimkit/ui/environment/Environment.h"

// What the page tells of what is around the editor: how it is to look, a pointer that hovers, keys
// that are held; and what it chooses of a tool's look.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

kalim::MDrawView* canvas() {
    return kalim::pageEditor()->canvas();
}

std::string_view typeOf(const kalim::ToolProperty& property) {
    constexpr std::string_view names[] = {"number", "switch", "choice", "color", "text"};
    return names[static_cast<std::size_t>(property.type)];
}

kalim::JsonValue jsonOf(const kalim::ToolPropertyValue& value) {
    return std::visit([](const auto& chosen) { return kalim::JsonValue(chosen); }, value);
}

kalim::JsonValue describe(const kalim::ToolProperty& property) {
    const std::string name(property.name);
    kalim::JsonValue::Object members{{"name", name}, {"type", std::string(typeOf(property))}};
    if (const auto value = canvas()->toolProperty(name)) {
        const bool isSwitch = property.type == kalim::ToolProperty::Type::Switch;
        const bool isOn = isSwitch && *value == kalim::ToolPropertyValue(1.0);
        members.emplace_back("value", isSwitch ? kalim::JsonValue(isOn) : jsonOf(*value));
    }
    if (property.type == kalim::ToolProperty::Type::Number) {
        members.emplace_back("least", property.least);
        members.emplace_back("most", property.most);
        members.emplace_back("step", property.step);
    }
    if (property.choices.empty()) return members;
    kalim::JsonValue::Array choices;
    for (const kalim::ToolProperty::Choice& choice : property.choices) {
        if (!choice.isNamedOnly) choices.emplace_back(std::string(choice.name));
    }
    members.emplace_back("choices", std::move(choices));
    return members;
}

}  // namespace

// ---- bars

// A SeatLayout, by its number.
KALIM_EXPORT("set_layout") void setLayout(int layout) {
    kalim::pageEditor()->seat().setLayout(static_cast<kalim::SeatLayout>(std::clamp(layout, 0, 3)));
    kalim::pageEditor()->show();
}

// Whether the picture is only looked at.
KALIM_EXPORT("set_read_only") void setReadOnly(bool isReadOnly) {
    kalim::pageEditor()->seat().setReadOnly(isReadOnly);
    kalim::pageEditor()->show();
}

// What the bars show. The buffer holds names of pens with blanks between; whether all are pens.
KALIM_EXPORT("set_pens") bool setPens(int length) {
    std::vector<std::string> names;
    std::string_view rest = kalim::pageText(length);
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find(' '));
        if (!name.empty()) names.emplace_back(name);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    const bool isDone = !kalim::pageEditor()->seat().setPens(names);
    kalim::pageEditor()->show();
    return isDone;
}

// The buffer holds so many packed colours.
KALIM_EXPORT("set_colors") void setColors(int count) {
    std::vector<kalim::gfx::ColorRef> colors;
    for (const double packed : kalim::pageNumbers(count))
        colors.push_back(kalim::gfx::unpackedColor(static_cast<std::uint32_t>(packed)));
    kalim::pageEditor()->seat().setColors(colors);
    kalim::pageEditor()->show();
}

KALIM_EXPORT("set_widths") void setWidths(int count) {
    kalim::pageEditor()->seat().setWidths(kalim::pageNumbers(count));
    kalim::pageEditor()->show();
}

// How wide what the page lays over the upper bar is, points; 0 for nothing.
KALIM_EXPORT("set_host_room") void setHostRoom(double width) {
    kalim::pageEditor()->seat().setHostRoom(width);
    kalim::pageEditor()->show();
}

// Answers with where that is, points, left, top, width and height, no width for nowhere, and the
// packed colour of texts there.
KALIM_EXPORT("host_room") const double* hostRoom() {
    static std::array<double, 5> numbers;
    const kalim::EditorSeat& seat = kalim::pageEditor()->seat();
    const kalim::gfx::Rect room = seat.hostRoom();
    const double color = kalim::gfx::packedColor(*seat.hostRoomTextColor());
    numbers = {room.minX(), room.minY(), room.size.width, room.size.height, color};
    return numbers.data();
}

// Whether the layout asks for bars that are in the rest of the module, which has not come yet.
KALIM_EXPORT("wants_rest") bool wantsRest() {
    return !kalim::pageEditor()->isWhole() && kalim::pageEditor()->seat().wantsDesk();
}

// ---- the pointer and keys that are held

// A mouse or a pen is at this place, pressed or not; and is not over the canvas any more.
KALIM_EXPORT("hover") void hover(double x, double y) {
    kalim::pageEditor()->seat().mouseMoved({x, y});
    kalim::pageEditor()->show();
}

KALIM_EXPORT("hover_left") void hoverLeft() {
    kalim::pageEditor()->seat().mouseLeft();
    kalim::pageEditor()->show();
}

KALIM_EXPORT("set_pen_only") void setPenOnly(bool isPenOnly) {
    kalim::pageEditor()->seat().setPenOnly(isPenOnly);
}

// The button of a mouse that asks for a menu.
KALIM_EXPORT("press_menu") void pressMenu(double x, double y) {
    kalim::EditorSeat& seat = kalim::pageEditor()->seat();
    seat.mousePressed(kalim::PointerButton::Other, {x, y});
    seat.mouseReleased(kalim::PointerButton::Other, {x, y});
    kalim::pageEditor()->show();
}

// A wheel or a touchpad moves what is below the pointer by so many points, content to the right and
// down: a list that it is over, or the picture.
KALIM_EXPORT("scroll") void scroll(double x, double y, double across, double down) {
    kalim::EditorSeat& seat = kalim::pageEditor()->seat();
    kalim::CanvasPointer* const pointer = seat.pointer();
    const kalim::gfx::Point place{x, y};
    const bool isTaken = seat.window().pointerScrolled(place, {across, down});
    if (!isTaken && pointer && pointer->pointerPressed(kalim::PointerButton::Middle, place)) {
        pointer->pointerMoved({x + across, y + down});
        pointer->pointerReleased(kalim::PointerButton::Middle);
    }
    kalim::pageEditor()->show();
}

KALIM_EXPORT("hold_keys") void holdKeys(bool shift, bool alt, bool control, bool space) {
    kalim::pageEditor()->seat().setModifiers({shift, alt, control, space});
    kalim::pageEditor()->show();
}

// ---- looks

KALIM_EXPORT("appearance") void appearance(bool isDark, bool hasHighContrast) {
    kalim::pageEditor()->seat().setAppearance({isDark, hasHighContrast});
    kalim::pageEditor()->show();
}

// The names of all colours that palette_color() takes, with blanks between, are the answer.
KALIM_EXPORT("palette_names") void paletteNames() {
    std::string names;
    for (const kalim::PaletteColor& entry : kalim::paletteColors())
        names.append(entry.name).append(" ");
    kalim::setPageAnswer(names);
}

// The buffer holds the name; the page's own colour, or none. They are shown by palette_changed().
KALIM_EXPORT("palette_color") bool paletteColor(int length, bool isGiven, std::uint32_t color) {
    const auto own = isGiven ? std::optional(*kalim::gfx::unpackedColor(color)) : std::nullopt;
    return kalim::setPaletteColor(kalim::pageText(length), own);
}

// How thick bars and how large buttons of wide screens are, points; 0 for the editor's own. They
// are shown by palette_changed().
KALIM_EXPORT("desk_sizes") void deskSizes(double bar, double button) {
    const auto given = [](double size) { return size > 0 ? std::optional(size) : std::nullopt; };
    kalim::DeskSizes::give(given(bar), given(button));
}

// Some colours are others: bars that have them already are made anew.
KALIM_EXPORT("palette_changed") void paletteChanged() {
    kalim::EditorSeat& seat = kalim::pageEditor()->seat();
    const kalim::SeatLayout layout = seat.layout();
    seat.setLayout(kalim::SeatLayout::Phone);
    seat.setLayout(layout);
    seat.redraw();
    kalim::pageEditor()->show();
}

// ---- texts

// What a page measures of texts has become other: they are laid out and drawn anew.
KALIM_EXPORT("texts_changed") void textsChanged() {
    kalim::ui::Environment::current().device().textsChanged();
    kalim::pageEditor()->seat().redraw();
    kalim::pageEditor()->show();
}

// ---- a tool's look

// Those of what is selected, or else of the pen, as JSON, are the answer.
KALIM_EXPORT("properties") void properties() {
    kalim::JsonValue::Array list;
    if (canvas()) {
        for (const kalim::ToolProperty* property : canvas()->toolProperties())
            list.push_back(describe(*property));
    }
    kalim::setPageAnswer(kalim::dumpJson(list));
}

// The buffer holds the name, and behind it the text of a value that is no number. Whether there is
// such a property that takes the value.
KALIM_EXPORT("set_property")
bool setProperty(int nameLength, int textLength, bool isNumber, double number) {
    if (!canvas()) return false;
    const std::string_view given = kalim::pageText(nameLength + textLength);
    const std::string name(given.substr(0, static_cast<std::size_t>(std::max(nameLength, 0))));
    const std::string text(given.substr(std::min(name.size(), given.size())));
    const bool done =
        isNumber ? canvas()->setToolProperty(name, number) : canvas()->setToolProperty(name, text);
    kalim::pageEditor()->show();
    return done;
}

KALIM_EXPORT("delete_selected") bool deleteSelected() {
    const bool hasSelection = canvas() && canvas()->hasSelectedTools();
    if (hasSelection) canvas()->deleteSelectedTools();
    kalim::pageEditor()->show();
    return hasSelection && !canvas()->hasSelectedTools();
}
