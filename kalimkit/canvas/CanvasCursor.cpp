#include "kalimkit/canvas/CanvasCursor.h"

#include <cmath>
#include <numbers>

#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/canvas/HandleUnder.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"
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
    const gfx::AffineTransform& toView = canvas.home.view().mViewTransform();
    // What tells all handles apart may be still to come; until then those of the frame are known.
    const bool knows = ui::Environment::current().attachment<ui::LateCode>().isThere(nullptr);
    // What is held stays so, wherever the pointer is.
    if (canvas.grip.holds()) {
        if (group->ownsGrip() && isHandle(group->grip()))
            return handleCursor(frame, group->grip(), toView);
        return knows ? partCursor(*group->firstSelectedTool(), group->grip(), toView, true)
                     : ui::Cursor::Move;
    }
    const MoveDirection ofFrame = frame.handleAt(p);
    if (ofFrame != MoveDirection::None) return handleCursor(frame, ofFrame, toView);
    const auto handle = knows ? handleUnder(*group, p) : std::nullopt;
    if (handle) return partCursor(*group->firstSelectedTool(), handle->part, toView, false);
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
