#include "kalimkit/host/browser/BrowserEditor.h"

#include <utility>
#include <vector>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/HtmlSurface.h"
#include "kalimkit/canvas/DeletionQuestion.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/StepListener.h"
#include "kalimkit/host/browser/BrowserImports.h"
#include "kalimkit/host/browser/PagePictures.h"
#include "kalimkit/ui/environment/LateCode.h"

namespace kalim {

namespace {

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
    explicit Delegate(const BrowserEditor& editor) : _editor(editor) {}

    void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                const gfx::ImageRef& image) override {
        const auto raster = rasterOf(image);
        if (raster) tellExported(raster->picture(), image, *_editor.canvas());
        page::onConfirm(raster ? raster->picture() : 0);
    }
    void close() override { page::onClose(); }
    bool editorKeysOffers(EditorAction action) const override {
        return action != EditorAction::SaveAs;
    }
    void editorKeysSavePicture(const gfx::ImageRef& image) override {
        const auto raster = rasterOf(image);
        if (!raster) return;
        tellExported(raster->picture(), image, *_editor.canvas());
        page::savePicture(raster->picture());
    }
    bool editorKeysToggleFullScreen() override {
        page::toggleFullScreen();
        return true;
    }
    void editorKeysCopyPicture(const gfx::ImageRef& image) override {
        const auto raster = rasterOf(image);
        page::copyPicture(raster ? raster->picture() : 0);
    }

private:
    const BrowserEditor& _editor;
};

// Passes on what has to be kept so that a work survives the page.
class BrowserEditor::Steps : public StepListener {
public:
    explicit Steps(const BrowserEditor& editor) : _editor(editor) {}

    void canvasDidStep(const std::string& step) override {
        if (!std::exchange(_isSetUp, true)) {
            const std::string start = _editor.canvas()->stepsSetUp();
            page::onSetUp(start.data(), static_cast<int>(start.size()));
        }
        page::onStep(step.data(), static_cast<int>(step.size()));
    }
    void canvasDidRestart() override {
        _isSetUp = false;
        page::onRestart();
    }
    // The page has the beginning.
    void goOn() { _isSetUp = true; }

private:
    const BrowserEditor& _editor;
    bool _isSetUp = false;
};

BrowserEditor::BrowserEditor(gfx::Size size, double scale)
    : _environment(makeEnvironment(size, scale)),
      _seat(_environment, size),
      _delegate(std::make_shared<Delegate>(*this)),
      _steps(std::make_shared<Steps>(*this)) {
    _seat.setCaretHandler([this](ui::TextView* focused, const gfx::Rect& /*caret*/) {
        // The page hears of the end of the focus when it ends.
        if (focused) _environment->textInputChanged(focused);
    });
    _seat.setDeskGate([this] {
        if (!_isWhole) page::wantRest();
        return _isWhole;
    });
    _environment->attachment<ui::LateCode>().question = [this](std::function<void()> then) {
        if (_isWhole) return true;
        if (then) _waiting = std::move(then);
        page::wantRest();
        return false;
    };
    _seat.setCursorHandler([](ui::Cursor cursor) { page::setCursor(static_cast<int>(cursor)); });
    _environment->attachment<DeletionQuestion>().mayDelete = [](std::size_t count) {
        return page::mayDelete(static_cast<int>(count));
    };
}

void BrowserEditor::setSize(gfx::Size size, double scale) {
    _environment->setScreen(size, scale, _safeArea);
    window().setSize(size);
}

void BrowserEditor::setSafeArea(const ui::EdgeInsets& insets) {
    if (insets == _safeArea) return;
    _safeArea = insets;
    _environment->setScreen(window().size(), _environment->screen().scale, insets);
    if (controller()) controller()->safeAreaDidChange();
}

void BrowserEditor::setKeyboardHeight(double height) {
    _environment->keyboard().setHeight(height, window().size());
}

void BrowserEditor::setWhole() {
    _isWhole = true;
    _seat.setLayout(_seat.layout());
    if (const auto then = std::exchange(_waiting, nullptr)) then();
}

// ---- the editor

void BrowserEditor::open(const gfx::ImageRef& image, bool exportsAtPictureScale, bool grows) {
    // The one before gives its memory back first.
    dismiss();
    _seat.present(EditorSeat::makeEditor(image, _delegate, {exportsAtPictureScale, grows}),
                  _delegate);
    _steps->canvasDidRestart();
    canvas()->setStepListener(_steps);
}

std::optional<std::string> BrowserEditor::openDocument(const Document& document,
                                                       const gfx::ImageRef& image,
                                                       std::span<const std::string> steps) {
    // The way there is no step of either.
    canvas()->setStepListener({});
    auto problem = controller()->openDocument(document, image);
    _steps->canvasDidRestart();
    canvas()->setStepListener(_steps);
    if (!problem && !steps.empty()) {
        problem = canvas()->replaySteps(steps);
        _steps->goOn();
    }
    return problem;
}

int BrowserEditor::picture() const {
    const gfx::ImageRef image = canvas() ? canvas()->sourceImage() : nullptr;
    const auto raster =
        image ? std::dynamic_pointer_cast<const gfx::HtmlRaster>(image->raster()) : nullptr;
    return raster ? raster->picture() : 0;
}

// ---- display

void BrowserEditor::show() {
    const std::vector<gfx::Rect> drawn = _seat.show();
    const auto* const surface = dynamic_cast<gfx::HtmlSurface*>(window().surface().get());
    if (!surface) return;
    for (const gfx::Rect& rect : drawn) {
        page::present(surface->number(), static_cast<int>(rect.minX()),
                      static_cast<int>(rect.minY()), static_cast<int>(rect.size.width),
                      static_cast<int>(rect.size.height));
    }
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
    if (raster) tellExported(raster->picture(), image, *view);
    return raster ? raster->picture() : 0;
}

}  // namespace kalim
