#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/StepListener.h"

namespace kalim::test {

// Writes down the steps of a canvas as a store would, and tells what of the canvas would be lost:
// by the end of the process, or by saving and opening.
class Survival {
public:
    // What is lost, one sentence.
    using Loss = std::optional<std::string>;

    explicit Survival(MDrawView& canvas);
    ~Survival();
    Survival(const Survival&) = delete;
    Survival& operator=(const Survival&) = delete;

    // Saves the canvas, opens it in a view of another size, and saves and exports it there.
    Loss lossBySaving();
    // Has another canvas become what the steps say, which then follows this one. The next time it
    // is that one which is lost and recovered, with the steps that it went on with.
    Loss recover();
    // Undoes or redoes a step there, too, and compares. Nothing where none was recovered.
    enum class Direction { Undo, Redo };
    Loss follow(Direction direction);

private:
    struct Steps;

    Loss lossByRecovery() const;

    MDrawView& _canvas;
    std::shared_ptr<Steps> _steps;
    std::shared_ptr<MDrawView> _recovered;
};

}  // namespace kalim::test
