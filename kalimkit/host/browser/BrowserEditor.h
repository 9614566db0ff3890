#pragma once

#include <memory>
#include <string_view>

#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/EditorPointer.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/host/browser/BrowserEnvironment.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/window/AccessibilityTree.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

// A window that is a <canvas> of the page, and the editor in it while a picture is open. What it
// draws is brought to the screen by show().
class BrowserEditor {
public:
    enum class ExportScale { Screen, Picture, View };

    // Size in points.
    BrowserEditor(gfx::Size size, double scale);
    ~BrowserEditor();
    BrowserEditor(const BrowserEditor&) = delete;
    BrowserEditor& operator=(const BrowserEditor&) = delete;

    BrowserEnvironment& environment() { return *_environment; }
    ui::Window& window() { return _window; }
    // What the page tells an assistive technology.
    ui::AccessibilityTree& accessibility() { return _accessibility; }
    ui::RunLoop& runLoop() { return _environment->runLoop(); }
    void setSize(gfx::Size size, double scale);
    // What notches and the like cover at the window's edges, points; none at first.
    void setSafeArea(const ui::EdgeInsets& insets);
    // The on-screen keyboard covers that much of the window, points.
    void setKeyboardHeight(double height);
    // Has everything drawn anew, where the page has lost it.
    void redraw();
    // Does the work that is due and shows what it, or a call to the editor, has changed.
    void show();

    // ---- the editor. None of these is called from within a message of the editor's.
    // Puts a new editor of the picture in the place of the one there is. What is drawn beyond the
    // picture's edge enlarges the result with `grows`, and is cut there without it.
    void open(const gfx::ImageRef& image, bool exportsAtPictureScale, bool grows);
    // Takes the editor off the window.
    void dismiss();
    // All are null without an editor.
    TesselViewController* controller() const { return _controller.get(); }
    MDrawView* canvas() const { return _controller ? _controller->drawView().get() : nullptr; }
    EditorKeys* keys() const { return _keys.get(); }
    EditorPointer* pointer() const { return _pointer.get(); }
    EditorRemote* remote() const { return _remote.get(); }
    // The number of the picture on the canvas; 0 for none.
    int picture() const;

    // ---- text. Nothing happens while no text has the focus; false then.
    bool insertText(std::string_view text);
    bool selectText(gfx::TextRange range);
    // Puts a text in the place of some bytes.
    bool replaceText(gfx::TextRange range, std::string_view text);
    bool composeText(std::string_view text, gfx::TextRange selection);

    // ---- export
    // The number of a picture that the page may use until the next export; 0 for none.
    int exportPicture(ExportScale scale);
    void endExport() { _exported = nullptr; }

private:
    class Delegate;

    void followCaret();
    void present();
    std::shared_ptr<ui::TextView> focusedText() const { return ui::TextView::focusedIn(_window); }

    std::shared_ptr<BrowserEnvironment> _environment;
    std::shared_ptr<ui::Environment> _previousEnvironment;
    ui::EdgeInsets _safeArea;
    ui::Window _window;
    ui::AccessibilityTree _accessibility{_window};
    std::shared_ptr<Delegate> _delegate;
    std::shared_ptr<TesselViewController> _controller;
    std::unique_ptr<EditorPointer> _pointer;
    std::unique_ptr<EditorRemote> _remote;
    std::unique_ptr<EditorKeys> _keys;
    // Where the page has been told that it is, window points.
    gfx::Rect _caret;
    // Keeps its number in use.
    std::shared_ptr<const gfx::Raster> _exported;
};

}  // namespace kalim
