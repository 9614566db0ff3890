#pragma once

#include <span>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

namespace ui {
class Window;
}
class CanvasPointer;
class MDrawView;

// A key of a canvas and what it does.
struct CanvasKey {
    std::string_view key;
    // Whether there was something to do.
    bool (*run)(MDrawView& canvas, CanvasPointer& pointer);
    // While it is held down, again and again.
    bool repeats = false;
    // Also where nothing can be changed.
    bool isForReaders = false;
};

// What the keys of a desktop do on a canvas, with an editor around it or alone. They have the names
// of EditorKeys, and there is what each does: those that undo, delete, escape, copy, cut, paste,
// choose, move, order, align, group, lock and zoom, and space, are the canvas's own. Here enter
// edits a text that is selected, does nothing to another shape that keys have chosen, and ends the
// editing as ctrl+enter does; shift+enter begins a line. Escape takes back what is being drawn or
// dragged, as far as the canvas is forgiving, else ends the editing of a text, else deselects.
class KALIM_API CanvasKeys {
public:
    // The pointer is the one on the canvas; it must outlive this object.
    explicit CanvasKeys(CanvasPointer& pointer) : _pointer(pointer) {}
    CanvasKeys(const CanvasKeys&) = delete;
    CanvasKeys& operator=(const CanvasKeys&) = delete;

    // Alerts and what takes the window's keys come first, then a text that is edited, then the
    // commands. Whether the key did something; if not, a host may leave it to others.
    bool press(std::string_view key, bool isRepeated = false);
    void release(std::string_view key);

    // ---- the parts, for those who have more around the canvas
    static std::span<const CanvasKey> keys();
    // The command alone.
    bool perform(std::string_view key, bool isRepeated = false);
    bool pressInText(std::string_view key, bool enterEnds);
    static bool pressInAlert(const ui::Window& window, std::string_view key, bool isRepeated);

private:
    CanvasPointer& _pointer;
};

}  // namespace kalim
