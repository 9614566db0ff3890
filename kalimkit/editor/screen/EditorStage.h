#pragma once

#include <functional>
#include <memory>

#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/window/ViewController.h"

namespace kalim {

// What the parts of the editor's screen stand on: its view, and its time. The screen owns the
// parts, so that none of them outlives it; what they set going ends with it.
class EditorStage {
public:
    explicit EditorStage(ui::ViewController& screen) : _screen(screen) {}

    ui::View& view() const { return *_screen.view(); }
    ui::Window* window() const { return _screen.window(); }
    // Places all views anew at once; within an animation they move there.
    void layout() const;

    // ---- where the outside calls in: only as long as the screen is there, which is held meanwhile
    std::function<void()> whileThere(std::function<void()> step) const;
    void after(double delay, std::function<void()> step) const;
    // The end of an animation, whether or not that has finished.
    std::function<void(bool finished)> atEnd(std::function<void()> step) const;
    // For what has to be told that it is not.
    std::weak_ptr<void> life() const { return _screen.weak_from_this(); }

    // See TesselViewController::setForgiving.
    bool isForgiving() const { return _isForgiving; }
    void setForgiving(bool forgiving) { _isForgiving = forgiving; }

private:
    ui::ViewController& _screen;
    bool _isForgiving = false;
};

}  // namespace kalim
