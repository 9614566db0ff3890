#pragma once

#include <memory>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MemberStates.h"
#include "kalimkit/canvas/NewTools.h"

namespace kalim {

class CanvasHome;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;

// A look of the selection that somebody is still choosing, as by a slider under a finger: all that
// the pen is told shows on it and is no step, until it is all put back.
class CanvasRestyling {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasScreen& screen;
        CanvasSelection& selection;
    };
    explicit CanvasRestyling(const Canvas& canvas) : _canvas(canvas) {}

    // See MDrawView.
    void begin();
    bool end();
    // Puts it back before its end; what is chosen until that comes is nothing. Whether there was
    // any.
    bool breakOff();
    bool isUnderWay() const { return _state == State::UnderWay; }
    bool isBrokenOff() const { return _state == State::BrokenOff; }
    // What it shows looks different.
    void show() const;

private:
    enum class State { None, UnderWay, BrokenOff };

    ToolList reached() const;
    void putBack();

    Canvas _canvas;
    State _state = State::None;
    ToolList _tools;
    MemberStates _states;
    // The pen's own.
    const ToolClass* _kind = nullptr;
    gfx::ColorRef _color;
    double _lineWidth = 0;
    ToolPropertyValues _properties;
};

}  // namespace kalim
