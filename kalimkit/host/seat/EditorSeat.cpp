#include "kalimkit/host/seat/EditorSeat.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/desk/DeskShell.h"
#include "kalimkit/editor/screen/EditorPointer.h"
#include "kalimkit/host/seat/BareShell.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/desk/KeysOverview.h"
#include "kalimkit/ui/environment/LateCode.h"

namespace kalim {

namespace {

// No finger of a touch screen has this number.
constexpr std::int64_t mouse = -1;
// A notch of the wheel enlarges by this.
constexpr double notchFactor = 1.15;
// And moves what scrolls under the pointer by so many points.
constexpr double notchDistance = 48;
// A pixel of the picture never covers more of the screen's than this, along a side.
constexpr double largestMagnification = 8;

}  // namespace

EditorSeat::EditorSeat(std::shared_ptr<ui::Environment> environment, gfx::Size size)
    : _environment(std::move(environment)), _scope(_environment), _window(size) {
    _environment->runLoop().setFrameHandler([this] { _window.display(); });
}

EditorSeat::~EditorSeat() {
    present(nullptr);
    _environment->runLoop().setFrameHandler({});
}

// ---- the editor

std::shared_ptr<TesselViewController> EditorSeat::makeEditor(
    const gfx::ImageRef& image, std::weak_ptr<TesselViewControllerDelegate> delegate,
    const Choices& choices) {
    auto editor = TesselViewController::initWithSourceImageWithDelegate(image, std::move(delegate));
    editor->setExportsAtPictureScale(choices.isPictureSize);
    editor->setForgiving(true);
    editor->setCropKeepsDrawings(true);
    editor->setCanvasBasis(MDrawView::usualBasis);
    editor->setLaysPictureBetweenBars(true);
    editor->setClipsToPicture(!choices.grows);
    editor->setOffersHidingStyles(true);
    editor->setRemembersTools(true);
    editor->setLargestMagnification(largestMagnification);
    return editor;
}

void EditorSeat::present(std::shared_ptr<TesselViewController> editor,
                         std::weak_ptr<EditorKeysDelegate> delegate) {
    letGo();
    _window.setRootViewController(editor);
    _editor = std::move(editor);
    if (!_editor) return;
    _pointer = std::make_unique<EditorPointer>(_editor);
    _remote = std::make_unique<EditorRemote>(_editor);
    _keys = std::make_unique<EditorKeys>(_editor, *_pointer, *_remote);
    _keys->setDelegate(std::move(delegate));
    // The seat owns the keys.
    const std::function<void()> listKeys = [this] {
        ui::KeysOverview::show(_window, EditorKeys::list());
    };
    _keys->setOverviewHandler([this, listKeys] {
        if (_environment->attachment<ui::LateCode>().isThere(listKeys)) listKeys();
    });
    _editor->setSizeHandler([this](gfx::Size size) { chooseShell(size); });
    if (_hasOffer) _editor->setOffer(_offer);
    if (_isReadOnly) setReadOnly(true);
    chooseShell(_window.size());
}

void EditorSeat::presentCanvas(std::shared_ptr<ui::ViewController> screen,
                               const std::shared_ptr<MDrawView>& canvas) {
    letGo();
    _editor = nullptr;
    _window.setRootViewController(std::move(screen));
    _canvas = canvas;
    _pointer = std::make_unique<CanvasPointer>(canvas);
    _canvasKeys = std::make_unique<CanvasKeys>(*_pointer);
    if (_isReadOnly) setReadOnly(true);
}

MDrawView* EditorSeat::canvas() const {
    return _editor ? _editor->drawView().get() : _canvas.lock().get();
}

void EditorSeat::letGo() {
    if (_editor) {
        _editor->setSizeHandler({});
        _editor->setShell(nullptr);
    }
    _window.rootView()->setReadsRightToLeft(_environment->readsRightToLeft());
    _shown = SeatLayout::Phone;
    _canvas.reset();
    _canvasKeys = nullptr;
    _keys = nullptr;
    _remote = nullptr;
    _pointer = nullptr;
}

void EditorSeat::setLayout(SeatLayout layout) {
    _layout = layout;
    chooseShell(_window.size());
}

// ---- what there is to choose from

std::optional<std::string> EditorSeat::setPens(const std::vector<std::string>& identifiers) {
    if (auto problem = _offer.setPens(identifiers)) return problem;
    showOffer();
    return std::nullopt;
}

void EditorSeat::setColors(std::vector<gfx::ColorRef> colors) {
    _offer.setColors(std::move(colors));
    showOffer();
}

void EditorSeat::setWidths(const std::vector<double>& widths) {
    _offer.setWidths(widths);
    showOffer();
}

void EditorSeat::addButton(HostButton button) {
    _offer.addButton(std::move(button));
    showOffer();
}

void EditorSeat::removeButton(std::string_view identifier) {
    _offer.removeButton(identifier);
    showOffer();
}

void EditorSeat::setHostRoom(double width) {
    _hostRoom = width;
    if (_editor && _editor->shell()) _editor->shell()->setHostRoom(width);
}

gfx::Rect EditorSeat::hostRoom() const {
    const bool isCovered = !_editor || _isReadOnly || !_editor->toolView() ||
                           _editor->actionSheet() || _editor->editImageInitialView() ||
                           ui::AlertView::topmostIn(_window);
    if (isCovered) return {};
    if (_editor->shell()) return _editor->shell()->hostRoom();
    const TesselTopTool& bar = *_editor->toolView();
    const gfx::Rect room = bar.freeRoom();
    const double width = std::min(room.size.width, _hostRoom);
    const gfx::Rect end{room.maxX() - width, room.minY(), width, room.size.height};
    return bar.convertRectTo(bar.mirrored(end), nullptr);
}

gfx::ColorRef EditorSeat::hostRoomTextColor() const {
    return _editor && _editor->shell() ? _editor->shell()->textColor() : gfx::makeColor(1, 1, 1);
}

void EditorSeat::setReadOnly(bool isReadOnly) {
    _isReadOnly = isReadOnly;
    if (_editor) {
        _editor->setReadOnly(isReadOnly);
    } else if (canvas() && canvas()->isReadOnly() != isReadOnly) {
        canvas()->finalizeCurrentDrawing();
        canvas()->selectNone();
        canvas()->setReadOnly(isReadOnly);
    }
    if (_pointer) _pointer->setMainButtonPans(isReadOnly);
}

// A desk is made anew with it.
void EditorSeat::showOffer() {
    _hasOffer = true;
    if (!_editor) return;
    _editor->setOffer(_offer);
    if (!_editor->shell()) return;
    _editor->setShell(nullptr);
    _shown = SeatLayout::Phone;
    chooseShell(_window.size());
}

bool EditorSeat::wantsDesk(gfx::Size size) const {
    return _layout == SeatLayout::Desk ||
           (_layout == SeatLayout::Auto && hasRoomForDesk(size, _hasHovered));
}

SeatLayout EditorSeat::layoutFor(gfx::Size size) const {
    if (_layout == SeatLayout::None) return SeatLayout::None;
    const bool isDesk = wantsDesk(size) && (!_deskGate || _deskGate());
    return isDesk ? SeatLayout::Desk : SeatLayout::Phone;
}

std::shared_ptr<EditorShell> EditorSeat::makeShell() {
    if (_shown == SeatLayout::Phone) return nullptr;
    if (_shown == SeatLayout::None) return std::make_shared<BareShell>();
    return DeskShell::make({*_editor, *_remote, *_keys, *_pointer});
}

void EditorSeat::chooseShell(gfx::Size size) {
    if (!_editor) return;
    const SeatLayout shown = layoutFor(size);
    if (shown == _shown) return;
    _shown = shown;
    _editor->setShell(makeShell());
    if (_editor->shell()) _editor->shell()->setHostRoom(_hostRoom);
}

// ---- the mouse

void EditorSeat::mousePressed(PointerButton button, gfx::Point place) {
    if (_pointer && _pointer->pointerPressed(button, place)) return;
    if (button == PointerButton::Other && _editor && _editor->shell())
        _editor->shell()->showContextMenu(place);
    if (button != PointerButton::Main) return;
    _isMouseDown = true;
    _window.fingersBegan({{mouse, place, _contact}});
}

void EditorSeat::mouseMoved(gfx::Point place) {
    _window.perform([&] {
        const bool isPanning = _pointer && _pointer->pointerMoved(place);
        if (!isPanning && _isMouseDown) _window.fingersMoved({{mouse, place, _contact}});
        _window.pointerHovered(place);
        if (!std::exchange(_hasHovered, true)) chooseShell(_window.size());
        if (_editor) _editor->tellShell();
    });
}

void EditorSeat::mouseLeft() {
    _window.pointerLeft();
    if (_editor) _editor->tellShell();
}

void EditorSeat::mouseReleased(PointerButton button, gfx::Point place) {
    if (_pointer && _pointer->pointerReleased(button)) return;
    if (button != PointerButton::Main || !_isMouseDown) return;
    _isMouseDown = false;
    _window.fingersEnded({{mouse, place, _contact}});
}

void EditorSeat::wheelTurned(gfx::Point place, double notches) {
    if (_window.modifiers().shift) return scrolled(place, {notches * notchDistance, 0});
    if (_window.pointerScrolled(place, {0, notches * notchDistance})) return;
    if (_pointer) _pointer->pointerZoomed(place, std::pow(notchFactor, notches));
}

void EditorSeat::scrolled(gfx::Point place, gfx::Point distance) {
    if (_window.pointerScrolled(place, distance)) return;
    if (_pointer) _pointer->pointerScrolled(distance);
}

bool EditorSeat::isPenOnly() const {
    return _environment->userDefault(MDrawView::penOnlySetting).value_or(true);
}

void EditorSeat::setPenOnly(bool isPenOnly) {
    _environment->setUserDefault(MDrawView::penOnlySetting, isPenOnly);
}

// ---- keys

bool EditorSeat::pressKey(std::string_view name, bool isRepeated) {
    if (_keys) return _keys->press(name, isRepeated);
    if (_canvasKeys) return _canvasKeys->press(name, isRepeated);
    const auto focused = focusedText();
    return focused && focused->handleKey(name);
}

void EditorSeat::releaseKey(std::string_view name) {
    if (_keys) _keys->release(name);
    if (_canvasKeys) _canvasKeys->release(name);
}

// ---- text

bool EditorSeat::insertText(std::string_view text) {
    const auto focused = focusedText();
    if (focused) focused->insertText(text);
    return focused != nullptr;
}

bool EditorSeat::composeText(std::string_view text, gfx::TextRange selection) {
    const auto focused = focusedText();
    if (focused) focused->setMarkedText(text, selection);
    return focused != nullptr;
}

bool EditorSeat::selectText(gfx::TextRange range) {
    const auto focused = focusedText();
    if (focused) focused->setSelection({range.begin, range.end});
    return focused != nullptr;
}

bool EditorSeat::replaceText(gfx::TextRange range, std::string_view text) {
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

void EditorSeat::followCaret() {
    if (!_caretHandler) return;
    const auto focused = focusedText();
    const gfx::Rect caret = focused ? focused->caretRectInWindow() : gfx::Rect();
    const bool wasTyping = std::exchange(_isTyping, focused != nullptr);
    const gfx::Rect before = std::exchange(_caret, caret);
    if (wasTyping == _isTyping && before == caret) return;
    _caretHandler(focused.get(), caret);
}

// ---- display

std::vector<gfx::Rect> EditorSeat::show() {
    _environment->runLoop().drain();
    followCaret();
    _window.display();
    return _window.takeDrawn();
}

void EditorSeat::redraw() {
    _window.setSize(_window.size());
    if (canvas()) canvas()->invalidateLayers();
}

void EditorSeat::setAppearance(const ui::Appearance& appearance) {
    _environment->setAppearance(appearance);
    _window.addDamage({{}, _window.size()});
}

}  // namespace kalim
