#include "kalimkit/host/headless/ScenarioFingers.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>

namespace kalim {

namespace {

// One user has no more.
constexpr std::size_t mostFingers = 10;

// In the order of ui::TouchKind.
constexpr std::string_view kindNames[] = {"finger", "pen", "mouse"};

// A list with something for each finger; empty where the step has none.
template <typename Value>
Problem readEach(const JsonValue& step, const char* key, const char* element, std::size_t count,
                 std::vector<Value>& values) {
    const JsonValue* const list = step.find(key);
    const std::string name = "\"" + std::string(key) + "\"";
    if (!list) return std::nullopt;
    if (Problem problem = readList(*list, name, element, values)) return problem;
    if (values.size() == count) return std::nullopt;
    return name + " and \"points\" must be as many, not " + std::to_string(values.size()) +
           " and " + std::to_string(count);
}

std::string fingerName(std::int64_t id) {
    return "finger " + std::to_string(id);
}

}  // namespace

Problem ScenarioFingers::play(const JsonValue& step) {
    std::string phase;
    if (Problem problem = readAs(*step.find("touch"), "\"touch\"", phase)) return problem;
    const bool leaves = phase == "ended" || phase == "cancelled";
    if (!leaves && phase != "began" && phase != "moved") {
        return wrongValue("\"touch\"", "began, moved, ended or cancelled", phase);
    }
    if (!leaves && step.find("lifted")) return "\"lifted\" belongs to ended and cancelled";
    Listed listed;
    if (Problem problem = readFingers(step, listed)) return problem;
    listed.modifiers = _window.modifiers();
    if (Problem problem = readModifiers(step, listed.modifiers)) return problem;
    if (phase == "began") return begin(listed);
    if (Problem problem = checkAllDown(listed.fingers)) return problem;
    if (phase == "moved") return move(listed);
    if (Problem problem = readLifted(step, listed)) return problem;
    return leave(listed, phase == "cancelled");
}

Problem ScenarioFingers::tap(gfx::Point place) {
    if (_down.size() >= mostFingers) return "all fingers are down already";
    constexpr std::int64_t tapping = -1;
    _window.fingersBegan({{tapping, place}});
    _window.fingersEnded({{tapping, place}});
    return std::nullopt;
}

// ---- reading

Problem ScenarioFingers::readFingers(const JsonValue& step, Listed& listed) const {
    const JsonValue* list = step.find("points");
    if (!list) return "\"touch\" needs \"points\"";
    std::vector<gfx::Point> points;
    if (Problem problem = readList(*list, "\"points\"", "point", points)) return problem;
    if (points.empty()) return "\"points\" names no finger";
    if (points.size() > mostFingers) {
        return "there are at most " + std::to_string(mostFingers) + " fingers, not " +
               std::to_string(points.size());
    }
    std::vector<std::int64_t> ids;
    if (Problem problem = readIds(step, points.size(), ids)) return problem;
    for (std::size_t index = 0; index < points.size(); ++index)
        listed.fingers.push_back({ids[index], points[index]});
    return readContacts(step, listed.fingers);
}

Problem ScenarioFingers::readContacts(const JsonValue& step,
                                      std::vector<ui::Finger>& fingers) const {
    for (ui::Finger& finger : fingers) {
        if (const auto down = _down.find(finger.id); down != _down.end())
            finger.contact = down->second.contact;
    }
    std::vector<std::string> kinds;
    std::vector<double> sizes;
    std::vector<double> pressures;
    std::vector<gfx::Point> tilts;
    if (Problem problem = readEach(step, "kinds", "kind", fingers.size(), kinds)) return problem;
    if (Problem problem = readEach(step, "sizes", "size", fingers.size(), sizes)) return problem;
    if (Problem problem = readEach(step, "pressures", "pressure", fingers.size(), pressures))
        return problem;
    if (Problem problem = readEach(step, "tilts", "tilt", fingers.size(), tilts)) return problem;
    for (std::size_t i = 0; i < fingers.size(); ++i) {
        ui::TouchContact& contact = fingers[i].contact;
        if (!kinds.empty()) {
            const auto* const kind = std::ranges::find(kindNames, kinds[i]);
            if (kind == std::end(kindNames))
                return wrongValue("a kind of \"kinds\"", "finger, pen or mouse", kinds[i]);
            contact.kind = static_cast<ui::TouchKind>(kind - std::begin(kindNames));
        }
        if (!sizes.empty()) contact.size = sizes[i];
        if (!pressures.empty()) contact.pressure = pressures[i];
        if (!tilts.empty()) contact.tilt = tilts[i];
        if (!(contact.size >= 0 && contact.size <= 1000))
            return "a size of \"sizes\" is from 0 to 1000 points";
        if (contact.pressure && !(*contact.pressure >= 0 && *contact.pressure <= 1))
            return "a pressure of \"pressures\" is from 0 to 1";
        if (std::abs(contact.tilt.x) > 90 || std::abs(contact.tilt.y) > 90)
            return "a tilt of \"tilts\" is from -90 to 90 degrees in either direction";
    }
    return std::nullopt;
}

Problem ScenarioFingers::readIds(const JsonValue& step, std::size_t count,
                                 std::vector<std::int64_t>& ids) const {
    const JsonValue* list = step.find("ids");
    if (!list) {
        for (std::size_t id = 1; id <= count; ++id)
            ids.push_back(static_cast<std::int64_t>(id));
        return std::nullopt;
    }
    if (Problem problem = readList(*list, "\"ids\"", "id", ids)) return problem;
    if (ids.size() != count) {
        return "\"ids\" and \"points\" must be as many, not " + std::to_string(ids.size()) +
               " and " + std::to_string(count);
    }
    for (const std::int64_t id : ids) {
        if (std::ranges::count(ids, id) > 1) return "\"ids\" names " + fingerName(id) + " twice";
    }
    return std::nullopt;
}

Problem ScenarioFingers::readModifiers(const JsonValue& step, ui::Modifiers& modifiers) {
    const JsonValue* list = step.find("modifiers");
    if (!list) return std::nullopt;
    std::vector<std::string> names;
    if (Problem problem = readList(*list, "\"modifiers\"", "key", names)) return problem;
    modifiers = {};
    for (const std::string& name : names) {
        if (name == "shift") {
            modifiers.shift = true;
        } else if (name == "alt") {
            modifiers.alt = true;
        } else if (name == "ctrl") {
            modifiers.control = true;
        } else if (name == "space") {
            modifiers.space = true;
        } else {
            return wrongValue("a key of \"modifiers\"", "shift, alt, ctrl or space", name);
        }
    }
    return std::nullopt;
}

Problem ScenarioFingers::readLifted(const JsonValue& step, Listed& listed) const {
    const JsonValue* list = step.find("lifted");
    if (!list) {
        for (const ui::Finger& finger : listed.fingers)
            listed.lifted.push_back(finger.id);
        return std::nullopt;
    }
    if (Problem problem = readList(*list, "\"lifted\"", "id", listed.lifted)) return problem;
    if (listed.lifted.empty()) return "\"lifted\" names no finger";
    for (const std::int64_t id : listed.lifted) {
        const auto isListed = [id](const ui::Finger& finger) { return finger.id == id; };
        if (std::ranges::none_of(listed.fingers, isListed)) {
            return "\"lifted\" names " + fingerName(id) + ", which is not among the points";
        }
    }
    return std::nullopt;
}

Problem ScenarioFingers::checkAllDown(const std::vector<ui::Finger>& fingers) const {
    for (const ui::Finger& finger : fingers) {
        if (!isDown(finger.id)) return fingerName(finger.id) + " is not on the view";
    }
    return std::nullopt;
}

// ---- playing

Problem ScenarioFingers::begin(const Listed& listed) {
    std::vector<ui::Finger> landing;
    std::vector<ui::Finger> staying;
    for (const ui::Finger& finger : listed.fingers)
        (isDown(finger.id) ? staying : landing).push_back(finger);
    if (landing.empty()) {
        return fingerName(staying.front().id) + " is on the view already and no other lands";
    }
    if (_down.size() + landing.size() > mostFingers) {
        return "there are at most " + std::to_string(mostFingers) + " fingers, not " +
               std::to_string(_down.size() + landing.size());
    }
    _window.setModifiers(listed.modifiers);
    moveTo(staying);
    for (const ui::Finger& finger : landing)
        _down[finger.id] = finger;
    _window.fingersBegan(landing);
    return std::nullopt;
}

Problem ScenarioFingers::move(const Listed& listed) {
    for (const ui::Finger& finger : listed.fingers)
        _down[finger.id] = finger;
    _window.setModifiers(listed.modifiers);
    _window.fingersMoved(listed.fingers);
    return std::nullopt;
}

Problem ScenarioFingers::leave(const Listed& listed, bool isCancelled) {
    std::vector<ui::Finger> leaving;
    std::vector<ui::Finger> staying;
    for (const ui::Finger& finger : listed.fingers) {
        const bool leaves = std::ranges::find(listed.lifted, finger.id) != listed.lifted.end();
        (leaves ? leaving : staying).push_back(finger);
    }
    _window.setModifiers(listed.modifiers);
    moveTo(staying);
    for (const ui::Finger& finger : leaving)
        _down.erase(finger.id);
    if (isCancelled) {
        _window.fingersCancelled(leaving);
    } else {
        _window.fingersEnded(leaving);
    }
    return std::nullopt;
}

void ScenarioFingers::moveTo(const std::vector<ui::Finger>& fingers) {
    std::vector<ui::Finger> moved;
    for (const ui::Finger& finger : fingers) {
        ui::Finger& before = _down[finger.id];
        const bool isThere = before.location == finger.location;
        before = finger;
        if (isThere) continue;
        moved.push_back(finger);
    }
    if (!moved.empty()) _window.fingersMoved(moved);
}

}  // namespace kalim
