#include "kalimkit/canvas/CanvasCursor.h"

#include <cmath>
#include <numbers>

#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

ui::Cursor handleCursor(const SelectionFrame& frame, MoveDirection handle,
                        const gfx::AffineTransform& toView) {
    if (handle == MoveDirection::Turn) return ui::Cursor::Rotate;
    const MovedSides sides = movedSides(handle);
    const gfx::AffineTransform shown = frame.turn.concat(toView);
    const gfx::Point direction{sides.x * 1.0, sides.y * 1.0};
    return resizeCursor(shown.apply(direction) - shown.apply(gfx::Point{}));
}

std::optional<ui::Cursor> selectionCursor(CanvasParts& canvas, gfx::Point p) {
    const auto& group = canvas.selection.group();
    if (!group || canvas.selection.isLocked()) return std::nullopt;
    canvas.selection.readyForScreen();
    const SelectionFrame frame = group->selectionFrame();
    // What is held stays so, wherever the pointer is.
    const bool isHeld = canvas.grip.holds();
    const MoveDirection held = group->ownsGrip() ? group->grip() : MoveDirection::None;
    const MoveDirection handle = isHeld ? held : frame.handleAt(p);
    if (isHeld && (held == MoveDirection::None || held == MoveDirection::Body))
        return ui::Cursor::Move;
    if (handle != MoveDirection::None)
        return handleCursor(frame, handle, canvas.home.view().mViewTransform());
    // Ends of lines and the like stand for the body here: whatever is pressed is moved.
    return group->hitTest(p) ? std::optional(ui::Cursor::Move) : std::nullopt;
}

}  // namespace

ui::Cursor resizeCursor(gfx::Point direction) {
    constexpr double eighth = std::numbers::pi / 4;
    constexpr ui::Cursor cursors[] = {ui::Cursor::ResizeEW, ui::Cursor::ResizeNWSE,
                                      ui::Cursor::ResizeNS, ui::Cursor::ResizeNESW};
    const long eighths = std::lround(std::atan2(direction.y, direction.x) / eighth);
    return cursors[(eighths % 4 + 4) % 4];
}

std::optional<ui::Cursor> canvasCursor(CanvasParts& canvas, gfx::Point viewPoint) {
    const ZoomedCanvasView& view = canvas.home.view();
    const ui::Modifiers keys = view.window() ? view.window()->modifiers() : ui::Modifiers();
    if (keys.space) return ui::Cursor::Grab;
    const gfx::Point p = view.invertViewPoint(viewPoint);
    if (const auto cursor = selectionCursor(canvas, p)) return cursor;
    const ToolClass* const pen = canvas.tools.pen().toolClass;
    // With a pen a press that moves draws; one that does not picks what is there.
    if (canvas.tools.topmostAt(p)) return pen ? ui::Cursor::Hand : ui::Cursor::Move;
    if (!pen) return ui::Cursor::Arrow;
    return pen->recorder() == ToolRecorder::Typing ? ui::Cursor::Text : ui::Cursor::Cross;
}

}  // namespace kalim
