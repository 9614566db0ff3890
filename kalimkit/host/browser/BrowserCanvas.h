#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/host/browser/BrowserEnvironment.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/view/Window.h"

namespace kalim {

// The canvas in a window that is a <canvas> of the page. What it draws is brought to the screen
// before each call returns.
class BrowserCanvas {
public:
    enum class ExportScale { Screen, Picture, View };

    // Size in points.
    BrowserCanvas(gfx::Size size, double scale);
    ~BrowserCanvas();
    BrowserCanvas(const BrowserCanvas&) = delete;
    BrowserCanvas& operator=(const BrowserCanvas&) = delete;

    MDrawView& view() { return *_view; }
    ui::Window& window() { return _window; }
    ui::RunLoop& runLoop() { return _environment->runLoop(); }
    void setSize(gfx::Size size, double scale);
    // The on-screen keyboard covers that much of the canvas, points.
    void setKeyboardHeight(double height);
    // Does the work that is due and shows what it, or a call to the view, has changed.
    void show();

    // ---- text. Nothing happens while no text has the focus; false then.
    bool insertText(std::string_view text);
    // Puts a text in the place of some bytes.
    bool replaceText(gfx::TextRange range, std::string_view text);
    bool composeText(std::string_view text, gfx::TextRange selection);
    bool pressKey(std::string_view key);

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
    ui::Window _window;
    std::shared_ptr<Delegate> _delegate;
    std::shared_ptr<MDrawView> _view;
    // Where the page has been told that it is, window points.
    gfx::Rect _caret;
    gfx::ImageRef _exported;
};

}  // namespace kalim
