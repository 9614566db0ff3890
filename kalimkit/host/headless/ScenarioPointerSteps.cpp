#include <algorithm>
#include <iterator>
#include <string_view>

#include "kalimkit/host/headless/ScenarioStage.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

// In the order of ui::Cursor.
constexpr std::string_view cursorNames[] = {
    "arrow",      "hand",       "cross",  "text", "move",     "resizeNS",  "resizeEW",
    "resizeNWSE", "resizeNESW", "rotate", "grab", "grabbing", "notAllowed"};

// Notches of a wheel in one step; more is a slip of the pen.
constexpr double mostNotches = 1000;

}  // namespace

Problem ScenarioPlayer::Stage::hover(const JsonValue& step) {
    const JsonValue& given = *step.find("hover");
    if (given.isNull()) {
        _seat.mouseLeft();
        return std::nullopt;
    }
    gfx::Point place;
    if (Problem problem = readAs(given, "\"hover\"", place)) return problem;
    _seat.mouseMoved(place);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::wheel(const JsonValue& step) {
    double notches = 0;
    gfx::Point place;
    if (Problem problem = readAs(*step.find("wheel"), "\"wheel\"", notches)) return problem;
    if (notches < -mostNotches || notches > mostNotches) {
        return wrongValue("\"wheel\"", "a number of notches from -1000 to 1000",
                          *step.find("wheel"));
    }
    if (!step.find("at")) return "\"wheel\" needs \"at\"";
    if (Problem problem = readOwn(step, "at", place)) return problem;
    _seat.wheelTurned(place, notches);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::pressEditorKey(const JsonValue& step) {
    std::string name;
    if (Problem problem = readAs(*step.find("press"), "\"press\"", name)) return problem;
    if (!_seat.keys()) return "\"press\" needs --editor";
    _seat.pressKey(name);
    _seat.releaseKey(name);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::setAppearance(const JsonValue& step) {
    std::string name;
    if (Problem problem = readAs(*step.find("appearance"), "\"appearance\"", name)) return problem;
    constexpr std::string_view names[] = {"light", "dark", "light contrast", "dark contrast"};
    const auto* const found = std::ranges::find(names, name);
    if (found == std::end(names)) {
        return wrongValue("\"appearance\"", "light, dark, light contrast or dark contrast", name);
    }
    const auto index = found - std::begin(names);
    _seat.setAppearance({.isDark = index % 2 == 1, .hasHighContrast = index >= 2});
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::printPointer() {
    const auto& place = window().hover().place();
    JsonValue at;
    if (place) at = JsonValue::Array{place->x, place->y};
    const auto cursor = static_cast<std::size_t>(window().hover().cursor());
    printLine({{"place", std::move(at)}, {"cursor", std::string(cursorNames[cursor])}});
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::printAnnouncements() {
    JsonValue::Array said;
    for (std::string& text : _environment->takeAnnouncements())
        said.push_back(std::move(text));
    printLine({{"announcements", std::move(said)}});
    return std::nullopt;
}

}  // namespace kalim
