#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "kalimkit/document/Document.h"
#include "kalimkit/host/browser/BrowserEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"

namespace kalim {

// The seat of an editor in a <canvas> of the page, taken while a picture is open. What it draws is
// brought to the screen by show().
class BrowserEditor {
public:
    enum class ExportScale { Screen, Picture, View };

    // The size is points.
    BrowserEditor(gfx::Size size, double scale);
    BrowserEditor(const BrowserEditor&) = delete;
    BrowserEditor& operator=(const BrowserEditor&) = delete;

    BrowserEnvironment& environment() { return *_environment; }
    EditorSeat& seat() { return _seat; }
    ui::Window& window() { return _seat.window(); }
    ui::RunLoop& runLoop() { return _environment->runLoop(); }
    void setSize(gfx::Size size, double scale);
    // Notches and the like cover so much at the window's edges, in points; nothing at first.
    void setSafeArea(const ui::EdgeInsets& insets);
    // The on-screen keyboard covers that much of the window, points.
    void setKeyboardHeight(double height);
    // The module has come whole, or the rest of it has come, see tools/split-module: nothing of the
    // desk and the kit may be used before.
    void setWhole();
    bool isWhole() const { return _isWhole; }
    // Does the work that is due and shows what it, or a call to the editor, has changed.
    void show();

    // ---- the editor. None of these is called from within a message of the editor's.
    // Puts a new editor of the picture in the place of the one there is. What is drawn beyond the
    // picture's edge enlarges the result with `grows`, and is cut there without it.
    void open(const gfx::ImageRef& image, bool exportsAtPictureScale, bool grows);
    // Opens a document, or goes on with a work of before, in the editor that has just been opened
    // with its picture. Answers with what is wrong; what is right up to there is on the canvas.
    std::optional<std::string> openDocument(const Document& document, const gfx::ImageRef& image,
                                            std::span<const std::string> steps = {});
    // Takes the editor off the window.
    void dismiss() { _seat.present(nullptr); }
    // Both are null without an editor.
    TesselViewController* controller() const { return _seat.editor().get(); }
    MDrawView* canvas() const { return _seat.canvas(); }
    // Tells the number of the picture on the canvas; 0 for none.
    int picture() const;

    // ---- export
    // The number of a picture that the page may use until the next export; 0 for none.
    int exportPicture(ExportScale scale);
    void endExport() { _exported = nullptr; }

private:
    class Delegate;
    class Steps;

    std::shared_ptr<BrowserEnvironment> _environment;
    ui::EdgeInsets _safeArea;
    bool _isWhole = false;
    // What waits until the module is whole.
    std::function<void()> _waiting;
    EditorSeat _seat;
    std::shared_ptr<Delegate> _delegate;
    std::shared_ptr<Steps> _steps;
    // Keeps its number in use.
    std::shared_ptr<const gfx::Raster> _exported;
};

}  // namespace kalim
