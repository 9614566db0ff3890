#pragma once

#include <functional>
#include <memory>

#include "kalimkit/editor/screen/EditorShell.h"
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

    // ---- what lies over the canvas, below what asks and crops: the phone's bars and buttons, all
    // in one view that lets other touches through, or a shell in their place
    void makeChrome();
    const std::shared_ptr<ui::View>& chrome() const { return _chrome; }
    // Null for the phone's.
    const std::shared_ptr<EditorShell>& shell() const { return _shell; }
    void setShell(std::shared_ptr<EditorShell> shell);
    // Something that a shell may show has changed.
    void tellShell() const;

    // ---- where the outside calls in: only as long as the screen is there, which is held meanwhile
    std::function<void()> whileThere(std::function<void()> step) const;
    void after(double delay, std::function<void()> step) const;
    // The end of an animation, whether or not that has finished.
    std::function<void(bool finished)> atEnd(std::function<void()> step) const;
    // For what has to be told that it is not.
    std::weak_ptr<void> life() const { return _screen.weak_from_this(); }

    // See TesselViewController::setReadOnly.
    bool isReadOnly() const { return _isReadOnly; }
    void setReadOnly(bool isReadOnly);
    // See TesselViewController::setForgiving.
    bool isForgiving() const { return _isForgiving; }
    void setForgiving(bool forgiving) { _isForgiving = forgiving; }

private:
    void showShell();

    ui::ViewController& _screen;
    std::shared_ptr<ui::View> _chrome;
    std::shared_ptr<EditorShell> _shell;
    bool _isForgiving = false;
    bool _isReadOnly = false;
};

}  // namespace kalim
