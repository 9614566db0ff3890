#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

// The fingers of a scenario: turns its touch steps into what a host would report to the window.
class ScenarioFingers {
public:
    // The window must outlive this object.
    explicit ScenarioFingers(ui::Window& window) : _window(window) {}

    // A step {"touch":phase,"points":[...]} with "ids", "lifted", "modifiers", "kinds", "sizes",
    // "pressures" and "tilts" where it has them.
    // After a problem nothing has happened.
    Problem play(const JsonValue& step);
    // A finger of its own lands and lifts at once. Refused where all fingers are in use.
    Problem tap(gfx::Point place);

private:
    // A step's fingers, and the ids of those that leave with it.
    struct Listed {
        std::vector<ui::Finger> fingers;
        std::vector<std::int64_t> lifted;
        ui::Modifiers modifiers;
    };

    Problem readFingers(const JsonValue& step, Listed& listed) const;
    Problem readIds(const JsonValue& step, std::size_t count, std::vector<std::int64_t>& ids) const;
    // A finger touches as before where the step does not say how.
    Problem readContacts(const JsonValue& step, std::vector<ui::Finger>& fingers) const;
    Problem readLifted(const JsonValue& step, Listed& listed) const;
    // Left alone where the step names none.
    static Problem readModifiers(const JsonValue& step, ui::Modifiers& modifiers);
    bool isDown(std::int64_t id) const { return _down.contains(id); }
    Problem checkAllDown(const std::vector<ui::Finger>& fingers) const;

    Problem begin(const Listed& listed);
    Problem move(const Listed& listed);
    Problem leave(const Listed& listed, bool isCancelled);
    // Reports those that are elsewhere than before.
    void moveTo(const std::vector<ui::Finger>& fingers);

    ui::Window& _window;
    // The fingers on the view, as they were reported last.
    std::map<std::int64_t, ui::Finger> _down;
};

}  // namespace kalim
