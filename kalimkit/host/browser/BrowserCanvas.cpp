#include "kalimkit/host/browser/BrowserCanvas.h"

#include <cmath>
#include <utility>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/HtmlSurface.h"
#include "kalimkit/backend/html/PackedColor.h"
#include "kalimkit/host/browser/BrowserImports.h"

namespace kalim {

// Passes on to the page what the canvas tells.
class BrowserCanvas::Delegate : public MDrawViewDelegate {
public:
    void didDrawStarted() override { page::onStarted(); }
    void seletedToolsStateChanged(bool hasSelection) override { page::onSelection(hasSelection); }
    void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                           const gfx::ColorRef& color,
                                                           double lineWidth) override {
        page::onSelected(static_cast<int>(type), color != nullptr,
                         color ? gfx::packedColor(*color) : 0, lineWidth);
    }
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override {
        page::onHistory(canUndo, canRedo);
    }
};

BrowserCanvas::BrowserCanvas(gfx::Size size, double scale)
    : _environment(std::make_shared<BrowserEnvironment>(scale)),
      _previousEnvironment(ui::Environment::install(_environment)),
      _window(size),
      _delegate(std::make_shared<Delegate>()),
      _view(MDrawView::initWithFrame({{}, size})) {
    _view->setDrawViewdelegate(_delegate);
    _window.rootView()->addSubview(_view);
    _environment->runLoop().setFrameHandler([this] { present(); });
}

BrowserCanvas::~BrowserCanvas() {
    _environment->runLoop().setFrameHandler({});
    _view->removeFromSuperview();
    ui::Environment::install(std::move(_previousEnvironment));
}

void BrowserCanvas::setSize(gfx::Size size, double scale) {
    _environment->setScale(scale);
    _window.setSize(size);
    _view->setFrame({{}, size});
    // All of it is in sight again, whichever way a phone was turned.
    _view->autoScaleWhenCtxEnlarged();
}

void BrowserCanvas::setKeyboardHeight(double height) {
    _environment->keyboard().setHeight(height, _window.size());
}

void BrowserCanvas::show() {
    _environment->runLoop().drain();
    followCaret();
    present();
}

// A caret also moves with its view, of which nobody tells.
void BrowserCanvas::followCaret() {
    const auto focused = focusedText();
    const gfx::Rect caret = focused ? focused->caretRectInWindow() : gfx::Rect{};
    if (focused && caret != _caret) _environment->textInputChanged(focused.get());
    _caret = caret;
}

void BrowserCanvas::present() {
    _window.display();
    const auto* const surface = dynamic_cast<gfx::HtmlSurface*>(_window.surface().get());
    if (!surface) return;
    for (const gfx::Rect& rect : _window.takeDrawn()) {
        page::present(surface->number(), static_cast<int>(rect.minX()),
                      static_cast<int>(rect.minY()), static_cast<int>(rect.size.width),
                      static_cast<int>(rect.size.height));
    }
}

// ---- text

bool BrowserCanvas::insertText(std::string_view text) {
    const auto focused = focusedText();
    if (focused) focused->insertText(text);
    return focused != nullptr;
}

bool BrowserCanvas::replaceText(gfx::TextRange range, std::string_view text) {
    const auto focused = focusedText();
    if (!focused) return false;
    focused->setSelection({range.begin, range.end});
    if (!text.empty()) {
        focused->insertText(text);
    } else if (range.begin != range.end) {
        focused->handleKey("backspace");
    }
    return true;
}

bool BrowserCanvas::composeText(std::string_view text, gfx::TextRange selection) {
    const auto focused = focusedText();
    if (focused) focused->setMarkedText(text, selection);
    return focused != nullptr;
}

bool BrowserCanvas::pressKey(std::string_view key) {
    const auto focused = focusedText();
    return focused && focused->handleKey(key);
}

// ---- export

int BrowserCanvas::exportPicture(ExportScale scale) {
    switch (scale) {
        case ExportScale::Screen:
            _exported = _view->exportImage();
            break;
        case ExportScale::Picture:
            _exported = _view->exportImageAtPictureScale();
            break;
        case ExportScale::View:
            _exported = _view->exportImageForScale();
            break;
    }
    if (!_exported) return 0;
    auto raster = gfx::HtmlRaster::of(*_exported);
    if (!raster) return 0;
    // Drawing may have left the pixels with the library; from now on the page has them.
    _exported =
        std::make_shared<const gfx::Image>(raster, _exported->scale(), _exported->orientation());
    return raster->picture();
}

}  // namespace kalim
