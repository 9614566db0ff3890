#include "kalimkit/host/browser/BrowserEditor.h"

#include <utility>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/HtmlSurface.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/browser/BrowserImports.h"

namespace kalim {

namespace {

// Pixels of the screen for one of the picture.
constexpr double largestMagnification = 8;

std::shared_ptr<BrowserEnvironment> makeEnvironment(gfx::Size size, double scale) {
    auto environment = std::make_shared<BrowserEnvironment>();
    environment->setScreen(size, scale);
    return environment;
}

// Drawing may have left the pixels with the library; the page gets a copy then.
std::shared_ptr<const gfx::HtmlRaster> rasterOf(const gfx::ImageRef& image) {
    return image ? gfx::HtmlRaster::of(*image) : nullptr;
}

}  // namespace

// Passes on to the page what the editor tells and its keys ask for.
class BrowserEditor::Delegate : public TesselViewControllerDelegate, public EditorKeysDelegate {
public:
    void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                const gfx::ImageRef& image) override {
        const auto raster = rasterOf(image);
        page::onConfirm(raster ? raster->picture() : 0);
    }
    void close() override { page::onClose(); }
    void editorKeysCopyPicture(const gfx::ImageRef& image) override {
        const auto raster = rasterOf(image);
        page::copyPicture(raster ? raster->picture() : 0);
    }
};

BrowserEditor::BrowserEditor(gfx::Size size, double scale)
    : _environment(makeEnvironment(size, scale)),
      _previousEnvironment(ui::Environment::install(_environment)),
      _window(size),
      _delegate(std::make_shared<Delegate>()) {
    _environment->runLoop().setFrameHandler([this] { present(); });
}

BrowserEditor::~BrowserEditor() {
    dismiss();
    _environment->runLoop().setFrameHandler({});
    ui::Environment::install(std::move(_previousEnvironment));
}

void BrowserEditor::setSize(gfx::Size size, double scale) {
    _environment->setScreen(size, scale, _safeArea);
    _window.setSize(size);
}

void BrowserEditor::setSafeArea(const ui::EdgeInsets& insets) {
    if (insets == _safeArea) return;
    _safeArea = insets;
    _environment->setScreen(_window.size(), _environment->screen().scale, insets);
    if (_controller) _controller->safeAreaDidChange();
}

void BrowserEditor::setKeyboardHeight(double height) {
    _environment->keyboard().setHeight(height, _window.size());
}

// ---- the editor

void BrowserEditor::open(const gfx::ImageRef& image, bool exportsAtPictureScale, bool grows) {
    dismiss();
    _controller = TesselViewController::initWithSourceImageWithDelegate(image, _delegate);
    _controller->setExportsAtPictureScale(exportsAtPictureScale);
    _controller->setForgiving(true);
    _controller->setCanvasBasis(MDrawView::usualBasis);
    _controller->setLaysPictureBetweenBars(true);
    _controller->setClipsToPicture(!grows);
    _controller->setLargestMagnification(largestMagnification);
    _window.setRootViewController(_controller);
    _pointer = std::make_unique<EditorPointer>(_controller);
    _remote = std::make_unique<EditorRemote>(_controller);
    _keys = std::make_unique<EditorKeys>(_controller, *_pointer, *_remote);
    _keys->setDelegate(_delegate);
}

void BrowserEditor::dismiss() {
    _keys = nullptr;
    _remote = nullptr;
    _pointer = nullptr;
    _window.setRootViewController(nullptr);
    _controller = nullptr;
}

int BrowserEditor::picture() const {
    const gfx::ImageRef image = canvas() ? canvas()->sourceImage() : nullptr;
    const auto raster =
        image ? std::dynamic_pointer_cast<const gfx::HtmlRaster>(image->raster()) : nullptr;
    return raster ? raster->picture() : 0;
}

// ---- display

void BrowserEditor::redraw() {
    _window.setSize(_window.size());
    if (canvas()) canvas()->invalidateLayers();
}

void BrowserEditor::show() {
    _environment->runLoop().drain();
    followCaret();
    present();
}

// A caret also moves with its view, of which nobody tells.
void BrowserEditor::followCaret() {
    const auto focused = focusedText();
    const gfx::Rect caret = focused ? focused->caretRectInWindow() : gfx::Rect{};
    if (focused && caret != _caret) _environment->textInputChanged(focused.get());
    _caret = caret;
}

void BrowserEditor::present() {
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

bool BrowserEditor::insertText(std::string_view text) {
    const auto focused = focusedText();
    if (focused) focused->insertText(text);
    return focused != nullptr;
}

bool BrowserEditor::selectText(gfx::TextRange range) {
    const auto focused = focusedText();
    if (focused) focused->setSelection({range.begin, range.end});
    return focused != nullptr;
}

bool BrowserEditor::replaceText(gfx::TextRange range, std::string_view text) {
    const auto focused = focusedText();
    if (!focused) return false;
    selectText(range);
    if (!text.empty()) {
        focused->insertText(text);
    } else if (range.begin != range.end) {
        focused->handleKey("backspace");
    }
    return true;
}

bool BrowserEditor::composeText(std::string_view text, gfx::TextRange selection) {
    const auto focused = focusedText();
    if (focused) focused->setMarkedText(text, selection);
    return focused != nullptr;
}

// ---- export

int BrowserEditor::exportPicture(ExportScale scale) {
    MDrawView* const view = canvas();
    if (!view) return 0;
    gfx::ImageRef image;
    switch (scale) {
        case ExportScale::Screen:
            image = view->exportImage();
            break;
        case ExportScale::Picture:
            image = view->exportImageAtPictureScale();
            break;
        case ExportScale::View:
            image = view->exportImageForScale();
            break;
    }
    const auto raster = rasterOf(image);
    _exported = raster;
    return raster ? raster->picture() : 0;
}

}  // namespace kalim
