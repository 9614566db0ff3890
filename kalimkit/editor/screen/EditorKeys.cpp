#include "kalimkit/editor/screen/EditorKeys.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// Of a key that zooms in.
constexpr double zoomStep = 1.25;
// Seconds without a notch after which a zoom has come to its end.
constexpr double zoomPause = 0.2;
constexpr unsigned largestSize = 4;

// Whether a key types something into a text.
bool isTyping(std::string_view key) {
    const std::string_view last = key.substr(key.rfind('+') + 1);
    const bool isPlain = last.size() == key.size() || key == "shift+" + std::string(last);
    return isPlain && (last.size() == 1 || last == "space" || last == "plus");
}

// Where plus and minus lie, and whether they need another key, differs between keyboards.
std::string_view commandName(std::string_view key) {
    for (const std::string_view plus :
         {"=", "shift+plus", "shift+=", "ctrl+plus", "ctrl+=", "ctrl+shift+plus", "ctrl+shift+="}) {
        if (key == plus) return "plus";
    }
    return key == "ctrl+-" ? "-" : key;
}

// Chooses as a tap on a dot does; the picker shows the dot that is like it, if it has one.
template <typename Likeness>
void choose(TesselViewController& editor, const TesselViewController::Dots& dots,
            TesselPopView& picker, const std::shared_ptr<TesselConfig>& config, Likeness isLike) {
    const auto dot =
        std::ranges::find_if(dots, [&](const auto& each) { return isLike(*each->config()); });
    if (dot != dots.end()) picker.setSelectIndex(static_cast<int>(dot - dots.begin()));
    editor.clickDotWithConfig(dot != dots.end() ? (*dot)->config() : config);
}

}  // namespace

struct EditorKeys::Command {
    std::string_view key;
    bool (EditorKeys::*run)();
    // While it is held down, again and again.
    bool repeats = false;
};

const EditorKeys::Command EditorKeys::commands[] = {
    {"ctrl+z", &EditorKeys::undo, true},
    {"ctrl+shift+z", &EditorKeys::redo, true},
    {"ctrl+y", &EditorKeys::redo, true},
    {"delete", &EditorKeys::deleteSelection},
    {"backspace", &EditorKeys::deleteSelection},
    {"escape", &EditorKeys::escape},
    {"enter", &EditorKeys::confirm},
    {"ctrl+s", &EditorKeys::confirm},
    {"ctrl+c", &EditorKeys::copy},
    {"ctrl+v", &EditorKeys::paste},
    {"space", &EditorKeys::holdSpace},
    {"1", &EditorKeys::takeColor<0>},
    {"2", &EditorKeys::takeColor<1>},
    {"3", &EditorKeys::takeColor<2>},
    {"4", &EditorKeys::takeColor<3>},
    {"5", &EditorKeys::takeColor<4>},
    {"[", &EditorKeys::thinner, true},
    {"]", &EditorKeys::thicker, true},
    {"ctrl+0", &EditorKeys::zoomToFit},
    {"ctrl+1", &EditorKeys::zoomToPixels},
    {"plus", &EditorKeys::zoomIn, true},
    {"-", &EditorKeys::zoomOut, true},
};

EditorKeys::EditorKeys(std::weak_ptr<TesselViewController> editor) : _editor(std::move(editor)) {}

EditorKeys::~EditorKeys() {
    if (_zoomEnd) ui::Environment::current().runLoop().cancel(_zoomEnd);
    _offer.end(false);
}

// ---- keys

bool EditorKeys::press(std::string_view key, bool isRepeated) {
    const auto editor = _editor.lock();
    // Until it has appeared there is nothing to choose from.
    if (!editor || !editor->penPopView() || !editor->window()) return false;
    if (pressInDialog(key, isRepeated) || pressInText(key)) return true;
    const auto* const command = std::ranges::find(commands, commandName(key), &Command::key);
    if (command == std::end(commands)) return !isRepeated && takePen(key);
    return (!isRepeated || command->repeats) && (this->*command->run)();
}

void EditorKeys::release(std::string_view key) {
    if (key.ends_with("space")) _isSpaceHeld = false;
}

// What stands above the editor takes all keys.
bool EditorKeys::pressInDialog(std::string_view key, bool isRepeated) {
    if (const auto alert = ui::AlertView::topmostIn(*window())) {
        alert->handleKey(key, isRepeated);
        return true;
    }
    if (const auto sheet = _editor.lock()->actionSheet()) {
        sheet->handleKey(key, isRepeated);
        return true;
    }
    return pressInCrop(key, isRepeated);
}

// Its buttons answer only once it has opened, and so do the keys.
bool EditorKeys::pressInCrop(std::string_view key, bool isRepeated) {
    const auto crop = _editor.lock()->editImageInitialView();
    if (!crop || !crop->cropToolBar() || isRepeated) return crop != nullptr;
    if (key == "escape") crop->onCropToolBarCancelBtnClicked();
    if (key == "enter" || key == "ctrl+s") crop->onCropToolBarDoneBtnClicked();
    if (key == "ctrl+v") _editor.lock()->tellThatCropIsOpen();
    return true;
}

bool EditorKeys::pressInText(std::string_view key) {
    const auto text = ui::TextView::focusedIn(*window());
    return text && (text->handleKey(key) || isTyping(key));
}

ui::Window* EditorKeys::window() const {
    const auto editor = _editor.lock();
    return editor ? editor->window() : nullptr;
}

// ---- commands

bool EditorKeys::undo() {
    const auto editor = _editor.lock();
    if (!editor->drawView()->canUndo()) return false;
    editor->toolView()->handleUndo();
    return true;
}

bool EditorKeys::redo() {
    const auto editor = _editor.lock();
    if (!editor->drawView()->canRedo()) return false;
    editor->toolView()->handleRedo();
    return true;
}

bool EditorKeys::deleteSelection() {
    const auto editor = _editor.lock();
    if (!editor->drawView()->hasSelectedTools()) return false;
    editor->clickDelete();
    return true;
}

bool EditorKeys::escape() {
    const auto editor = _editor.lock();
    if (editor->drawView()->curEdittingTextTool()) {
        editor->clickToolDone();
    } else if (editor->drawView()->hasSelectedTools()) {
        editor->drawView()->selectNone();
    } else if (editor->showPanel() || editor->isAnimation()) {
        editor->clickAtConfirm();
    } else {
        askToClose();
    }
    return true;
}

bool EditorKeys::confirm() {
    _editor.lock()->toolView()->handleConfirm();
    return true;
}

bool EditorKeys::copy() {
    const auto editor = _editor.lock();
    const auto delegate = _delegate.lock();
    if (!delegate) return false;
    const gfx::ImageRef image = editor->exportedImage();
    if (image) delegate->editorKeysCopyPicture(image);
    return image != nullptr;
}

bool EditorKeys::paste() {
    const auto delegate = _delegate.lock();
    if (delegate) delegate->editorKeysPastePicture();
    return delegate != nullptr;
}

bool EditorKeys::holdSpace() {
    _isSpaceHeld = true;
    return true;
}

// The canvas when keys may zoom it now; null otherwise.
MDrawView* EditorKeys::canvasToZoom() {
    if (_panButton || !isCanvasFree()) return nullptr;
    endZoom();
    return _editor.lock()->drawView().get();
}

bool EditorKeys::zoomToFit() {
    MDrawView* const canvas = canvasToZoom();
    return canvas && canvas->zoomToFit();
}

bool EditorKeys::zoomToPixels() {
    MDrawView* const canvas = canvasToZoom();
    return canvas && canvas->zoomToPixels();
}

bool EditorKeys::zoomIn() {
    MDrawView* const canvas = canvasToZoom();
    return canvas && canvas->zoomBy(zoomStep);
}

bool EditorKeys::zoomOut() {
    MDrawView* const canvas = canvasToZoom();
    return canvas && canvas->zoomBy(1 / zoomStep);
}

bool EditorKeys::takePen(std::string_view key) {
    const auto pen = std::ranges::find_if(pens(), [key](const Pen& each) {
        return each.key && key == std::string_view(&each.key, 1);
    });
    if (pen == pens().end()) return false;
    choosePen(pen->number);
    return true;
}

template <unsigned index>
bool EditorKeys::takeColor() {
    const auto& dots = _editor.lock()->colorViews();
    if (index < dots.size()) chooseColor(dots[index]->config()->color());
    return index < dots.size();
}

// The width that there really is: that of the selection where there is one.
double EditorKeys::lineWidth() const {
    const auto canvas = _editor.lock()->drawView();
    if (!canvas->hasSelectedTools()) return canvas->lineWidth();
    return canvas->handingTools()->firstSelectedTool()->lineWidth();
}

// Past the last size nothing changes.
bool EditorKeys::thinner() {
    const double before = lineWidth();
    for (unsigned size = largestSize + 1; size-- > 0;) {
        if (*lineWidthForSize(size) >= before) continue;
        chooseLineWidth(*lineWidthForSize(size));
        break;
    }
    return true;
}

bool EditorKeys::thicker() {
    const double before = lineWidth();
    for (unsigned size = 0; size <= largestSize; ++size) {
        if (*lineWidthForSize(size) <= before) continue;
        chooseLineWidth(*lineWidthForSize(size));
        break;
    }
    return true;
}

// ---- the pointer

bool EditorKeys::pointerPressed(PointerButton button, gfx::Point place) {
    const bool isPanning =
        button == PointerButton::Middle || (button == PointerButton::Main && _isSpaceHeld);
    if (!isPanning || _panButton) return _panButton.has_value();
    if (!isCanvasFree()) return button == PointerButton::Middle;
    endZoom();
    _panButton = button;
    _panStart = _panEnd = place;
    _editor.lock()->drawView()->handlePanGesture(ui::GestureState::Began, {});
    return true;
}

bool EditorKeys::pointerMoved(gfx::Point place) {
    const auto editor = _editor.lock();
    if (!_panButton || !editor || !editor->drawView()) return false;
    editor->drawView()->handlePanGesture(ui::GestureState::Changed,
                                         inCanvas(place) - inCanvas(_panStart));
    _panEnd = place;
    return true;
}

bool EditorKeys::pointerReleased(PointerButton button) {
    if (_panButton != button) return false;
    _panButton.reset();
    if (const auto editor = _editor.lock()) {
        editor->drawView()->handlePanGesture(ui::GestureState::Ended,
                                             inCanvas(_panEnd) - inCanvas(_panStart));
    }
    return true;
}

void EditorKeys::pointerZoomed(gfx::Point place, double factor) {
    if (_panButton || !isCanvasFree() || !std::isfinite(factor) || !(factor > 0)) return;
    const auto canvas = _editor.lock()->drawView();
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    if (_zoomEnd) {
        loop.cancel(_zoomEnd);
    } else {
        _zoom = 1;
        _scaleBeforeZoom = canvas->contextScale();
        canvas->handlePinchGesture(ui::GestureState::Began, 1, inCanvas(place));
    }
    _zoomPlace = place;
    // A wheel has no end that would spring back by itself, so it stops at the bounds.
    _zoom = std::clamp(_zoom * factor, canvas->defaultMinScale() / _scaleBeforeZoom,
                       std::max(1.0, canvas->largestScale() / _scaleBeforeZoom));
    canvas->handlePinchGesture(ui::GestureState::Changed, _zoom, inCanvas(place));
    _zoomEnd = loop.after(zoomPause, [this] { endZoom(); });
}

void EditorKeys::endZoom() {
    if (!_zoomEnd) return;
    ui::Environment::current().runLoop().cancel(std::exchange(_zoomEnd, 0));
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView()) return;
    editor->drawView()->handlePinchGesture(ui::GestureState::Ended, _zoom, inCanvas(_zoomPlace));
}

// Whether the canvas can be moved now: it is in sight and no finger works on it.
bool EditorKeys::isCanvasFree() const {
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView() || !editor->window()) return false;
    return editor->window()->activeTouches().empty() && !editor->actionSheet() &&
           !editor->editImageInitialView() && !ui::AlertView::topmostIn(*editor->window());
}

gfx::Point EditorKeys::inCanvas(gfx::Point place) const {
    return _editor.lock()->drawView()->convertPointFrom(place, nullptr);
}

// ---- for hosts

void EditorKeys::choosePen(unsigned pen) {
    const auto editor = _editor.lock();
    if (!editor || !editor->penPopView()) return;
    editor->drawView()->selectNone();
    const auto config = TesselConfig::create();
    config->setType(2);
    config->setPen(pen);
    if (pen == EditorPenCrop) {
        choose(*editor, editor->penViews(), *editor->penPopView(), config,
               [](const TesselConfig& dot) { return dot.pen() == EditorPenCrop; });
    } else {
        editor->clickDotWithConfig(config);
    }
}

void EditorKeys::chooseColor(const gfx::ColorRef& color) {
    const auto editor = _editor.lock();
    if (!color || !editor || !editor->colorPopView()) return;
    const auto config = TesselConfig::create();
    config->setType(0);
    config->setColor(color);
    choose(*editor, editor->colorViews(), *editor->colorPopView(), config,
           [&](const TesselConfig& dot) { return *dot.color() == *color; });
}

void EditorKeys::chooseLineWidth(double width) {
    const auto editor = _editor.lock();
    if (!editor || !editor->sizePopView()) return;
    const auto config = TesselConfig::create();
    config->setType(1);
    for (unsigned size = 0; lineWidthForSize(size); ++size) {
        if (*lineWidthForSize(size) != width) continue;
        config->setSize(size);
        choose(*editor, editor->sizeViews(), *editor->sizePopView(), config,
               [size](const TesselConfig& dot) { return dot.size() == size; });
        return;
    }
    editor->drawView()->setDrawLineWidth(width);
}

void EditorKeys::askToClose() {
    const auto editor = _editor.lock();
    if (!editor || !editor->toolView() || editor->actionSheet()) return;
    // One question at a time: the keys would answer the covered one.
    const bool isAsked = editor->window() && ui::AlertView::topmostIn(*editor->window());
    if (!isAsked || !editor->asksBeforeClosing()) editor->toolView()->handleClose();
}

void EditorKeys::openPicture(const gfx::ImageRef& image, OpeningAnswer answer) {
    const Offer offer{image, std::move(answer)};
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView()) return offer.end(false);
    if (!image || editor->editImageInitialView()) {
        image ? editor->tellThatCropIsOpen() : editor->checkAndTipImageVaild(image);
        return offer.end(false);
    }
    // The question that is up is asked about the last one.
    const Offer overtaken = std::exchange(_offer, offer);
    if (overtaken.image) return overtaken.end(false);
    if (editor->hasWork()) return askToOpen();
    decideOffer(true);
}

void EditorKeys::refusePicture(const std::string& reason) {
    if (_editor.expired()) return;
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert({environment.localizedString("无法载入图片"),
                              reason,
                              {environment.localizedString("好")},
                              {}});
}

void EditorKeys::Offer::end(bool isOpened) const {
    if (answer) answer(isOpened);
}

void EditorKeys::decideOffer(bool isWanted) {
    const Offer offer = std::exchange(_offer, {});
    const auto editor = _editor.lock();
    const bool isOpened = isWanted && editor && !editor->editImageInitialView();
    if (isOpened) editor->openPicture(offer.image);
    offer.end(isOpened);
}

void EditorKeys::askToOpen() {
    _editor.lock()->askToReplaceWork([weakAlive = std::weak_ptr(_self)](bool isWanted) {
        if (const auto keys = weakAlive.lock()) (*keys)->decideOffer(isWanted);
    });
}

}  // namespace kalim
