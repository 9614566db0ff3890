#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

class EditorSeat;

// Plays the steps of a scenario that a user could do himself, in an editor that another host shows:
// touch, tap, type, compose, key, call and wait.
class KALIM_API LiveScenario {
public:
    // Lets the host's time pass, in seconds, and does not return before.
    using Wait = std::function<void(double seconds)>;

    // In the editor that is presented; the seat must outlive this object.
    LiveScenario(EditorSeat& seat, Wait wait);
    ~LiveScenario();
    LiveScenario(const LiveScenario&) = delete;
    LiveScenario& operator=(const LiveScenario&) = delete;

    // One line; a blank one does nothing. Nothing on success, else a sentence that says what is
    // wrong with it, and nothing has been done then.
    std::optional<std::string> play(std::string_view line);

private:
    class Steps;
    std::unique_ptr<Steps> _steps;
};

}  // namespace kalim
