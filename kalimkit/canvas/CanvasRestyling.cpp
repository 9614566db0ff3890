#include "kalimkit/canvas/CanvasRestyling.h"

#include <utility>

#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"

namespace kalim {

void CanvasRestyling::begin() {
    if (_state != State::None || !_canvas.tools.forgiving()) return;
    _canvas.selection.endStepUnderWay();
    if (!_canvas.selection.isValid()) return;
    _tools = reached();
    _states = MemberStates(_tools);
    NewTools& pen = _canvas.tools.pen();
    _kind = pen.toolClass;
    _color = pen.color;
    _lineWidth = pen.lineWidth;
    if (_kind) _properties = pen.propertiesOf(*_kind);
    _state = State::UnderWay;
}

// There is one shade, which all that make it share.
ToolList CanvasRestyling::reached() const {
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        const bool isShade = tool->toolClass().layer() == ToolLayer::Shade && !tool->isNewBuild();
        if (isShade || _canvas.selection.contains(tool)) tools.push_back(tool);
    }
    return tools;
}

bool CanvasRestyling::end() {
    const bool isWhole = _state != State::BrokenOff;
    if (isUnderWay()) putBack();
    _state = State::None;
    return isWhole;
}

bool CanvasRestyling::breakOff() {
    if (!isUnderWay()) return false;
    putBack();
    _state = State::BrokenOff;
    return true;
}

void CanvasRestyling::putBack() {
    std::exchange(_states, {}).restore();
    NewTools& pen = _canvas.tools.pen();
    pen.color = std::move(_color);
    pen.lineWidth = _lineWidth;
    if (_kind) pen.propertiesOf(*_kind) = std::exchange(_properties, {});
    show();
    _tools.clear();
}

void CanvasRestyling::show() const {
    for (const ToolRef& tool : _tools)
        _canvas.screen.markChanged(tool);
    _canvas.home.redisplay();
}

}  // namespace kalim
