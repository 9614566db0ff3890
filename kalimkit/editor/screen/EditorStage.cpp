#include "kalimkit/editor/screen/EditorStage.h"

#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void EditorStage::layout() const {
    view().setNeedsLayout();
    view().layoutIfNeeded();
}

std::function<void()> EditorStage::whileThere(std::function<void()> step) const {
    return [weakScreen = _screen.weak_from_this(), step = std::move(step)] {
        if (const auto alive = weakScreen.lock()) step();
    };
}

void EditorStage::after(double delay, std::function<void()> step) const {
    ui::Environment::current().runLoop().after(delay, whileThere(std::move(step)));
}

std::function<void(bool)> EditorStage::atEnd(std::function<void()> step) const {
    return [run = whileThere(std::move(step))](bool) { run(); };
}

}  // namespace kalim
