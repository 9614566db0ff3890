#include "kalimkit/host/headless/ScenarioGestures.h"

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace kalim {

namespace {

// No angle in radians and no factor of a pinch is larger.
constexpr double largestValue = 1e6;

Problem readState(const JsonValue& step, ui::GestureState& state) {
    struct Named {
        std::string_view name;
        ui::GestureState state;
    };
    constexpr Named states[] = {{"began", ui::GestureState::Began},
                                {"changed", ui::GestureState::Changed},
                                {"ended", ui::GestureState::Ended},
                                {"cancelled", ui::GestureState::Cancelled},
                                {"failed", ui::GestureState::Failed}};
    const JsonValue* given = step.find("state");
    if (!given) return "\"gesture\" needs \"state\"";
    for (const Named& named : states) {
        if (given->string() && *given->string() == named.name) {
            state = named.state;
            return std::nullopt;
        }
    }
    return wrongValue("\"state\"", "began, changed, ended, cancelled or failed", *given);
}

Problem rotate(const GestureTarget& target, const JsonValue& step, ui::GestureState state) {
    ui::RotationGestureRecognizer& recognizer = target.rotation;
    double rotation = state == ui::GestureState::Began ? 0 : recognizer.rotation();
    if (Problem problem = readOwn(step, "value", rotation)) return problem;
    if (std::abs(rotation) > largestValue) {
        return wrongValue("\"value\"", "a number of radians up to 1000000", *step.find("value"));
    }
    recognizer.drive(state, rotation);
    return std::nullopt;
}

Problem pinch(const GestureTarget& target, const JsonValue& step, ui::GestureState state) {
    ui::PinchGestureRecognizer& recognizer = target.pinch;
    double scale = state == ui::GestureState::Began ? 1 : recognizer.scale();
    gfx::Point focus = target.view.bounds().center();
    if (Problem problem = readOwn(step, "value", scale)) return problem;
    if (Problem problem = readOwn(step, "at", focus)) return problem;
    if (!(scale > 0) || scale > largestValue) {
        return wrongValue("\"value\"", "a factor above 0 and up to 1000000", *step.find("value"));
    }
    recognizer.drive(state, scale, target.view.convertPointTo(focus, nullptr));
    return std::nullopt;
}

Problem pan(const GestureTarget& target, const JsonValue& step, ui::GestureState state) {
    ui::PanGestureRecognizer& recognizer = target.pan;
    gfx::Point translation;
    if (state != ui::GestureState::Began) translation = recognizer.translationIn(nullptr);
    if (Problem problem = readOwn(step, "value", translation)) return problem;
    recognizer.drive(state, translation);
    return std::nullopt;
}

}  // namespace

Problem playGesture(const GestureTarget& target, const JsonValue& step) {
    std::string name;
    ui::GestureState state = ui::GestureState::Possible;
    if (Problem problem = readAs(*step.find("gesture"), "\"gesture\"", name)) return problem;
    if (Problem problem = readState(step, state)) return problem;
    if (step.find("at") && name != "pinch") return "only a pinch is \"at\" a point";
    if (name == "rotation") return rotate(target, step, state);
    if (name == "pinch") return pinch(target, step, state);
    if (name == "pan") return pan(target, step, state);
    return "there is no recogniser of " + shownName(name) +
           ", only of \"rotation\", \"pinch\" and \"pan\"";
}

}  // namespace kalim
