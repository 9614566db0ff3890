#include "kalimkit/editor/screen/EditorKeys.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/screen/EditorKeyTable.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

constexpr unsigned largestSize = 4;

std::string_view commandName(std::string_view key) {
    return key == "shift+?" || key == "shift+/" ? "?" : key;
}

}  // namespace

// Those of a name that the canvas has as well come in its place.
const EditorKeys::Command EditorKeys::commands[] = {
    {"ctrl+z", &EditorKeys::undo, true},
    {"ctrl+shift+z", &EditorKeys::redo, true},
    {"ctrl+y", &EditorKeys::redo, true},
    {"escape", &EditorKeys::escape},
    {"enter", &EditorKeys::enter},
    {"ctrl+s", &EditorKeys::confirm},
    {"ctrl+shift+s", &EditorKeys::saveDocument},
    {"ctrl+o", &EditorKeys::openFile},
    {"ctrl+c", &EditorKeys::copy},
    {"ctrl+v", &EditorKeys::paste},
    {"1", &EditorKeys::takeColor<0>},
    {"2", &EditorKeys::takeColor<1>},
    {"3", &EditorKeys::takeColor<2>},
    {"4", &EditorKeys::takeColor<3>},
    {"5", &EditorKeys::takeColor<4>},
    {"[", &EditorKeys::thinner, true},
    {"]", &EditorKeys::thicker, true},
    {"f1", &EditorKeys::showKeys},
    {"?", &EditorKeys::showKeys},
    {"f11", &EditorKeys::toggleFullScreen},
};

std::span<const EditorKeys::Command> EditorKeys::allCommands() {
    return commands;
}

EditorKeys::EditorKeys(std::weak_ptr<TesselViewController> editor, CanvasPointer& pointer,
                       EditorRemote& remote)
    : _editor(std::move(editor)), _canvasKeys(pointer), _remote(remote) {}

// ---- keys

bool EditorKeys::press(std::string_view key, bool isRepeated) {
    const auto editor = _editor.lock();
    // Until it has appeared there is nothing to choose from.
    if (!editor || !editor->penPopView() || !editor->window()) return false;
    if (pressInDialog(key, isRepeated)) return true;
    // A phone's keyboard has no other key for a line.
    const bool enterEnds = editor->shell() != nullptr;
    if (_canvasKeys.pressInText(key, enterEnds)) return true;
    const auto* const command = std::ranges::find(commands, commandName(key), &Command::key);
    if (command == std::end(commands)) {
        if (_canvasKeys.perform(key, isRepeated)) return true;
        return !editor->isReadOnly() && !isRepeated && takePen(key);
    }
    if (editor->isReadOnly() && !isForReaders(command->run)) return false;
    return (!isRepeated || command->repeats) && (this->*command->run)();
}

// What may be done where nothing can be changed.
bool EditorKeys::isForReaders(bool (EditorKeys::*run)()) {
    constexpr bool (EditorKeys::*allowed[])() = {&EditorKeys::escape, &EditorKeys::copy,
                                                 &EditorKeys::showKeys,
                                                 &EditorKeys::toggleFullScreen};
    return std::ranges::find(allowed, run) != std::end(allowed);
}

void EditorKeys::release(std::string_view key) {
    _canvasKeys.release(key);
}

// What stands above the editor takes all keys.
bool EditorKeys::pressInDialog(std::string_view key, bool isRepeated) {
    if (CanvasKeys::pressInAlert(*window(), key, isRepeated)) return true;
    if (const auto sheet = _editor.lock()->actionSheet()) {
        sheet->handleKey(key, isRepeated);
        return true;
    }
    return window()->takeKey(key, isRepeated) || pressInCrop(key, isRepeated);
}

// Its buttons answer only once it has opened, and so do the keys.
bool EditorKeys::pressInCrop(std::string_view key, bool isRepeated) {
    const auto crop = _editor.lock()->editImageInitialView();
    if (!crop || !crop->cropToolBar() || isRepeated) return crop != nullptr;
    if (key == "escape") crop->onCropToolBarCancelBtnClicked();
    if (key == "enter" || key == "ctrl+s") crop->onCropToolBarDoneBtnClicked();
    if (key == "ctrl+shift+s") saveDocument();
    if (key == "ctrl+v" || key == "ctrl+o") _editor.lock()->tellThatCropIsOpen();
    return true;
}

ui::Window* EditorKeys::window() const {
    const auto editor = _editor.lock();
    return editor ? editor->window() : nullptr;
}

// ---- what buttons share with the keys

bool EditorKeys::offers(EditorAction action) const {
    const auto delegate = _delegate.lock();
    return delegate && delegate->editorKeysOffers(action);
}

bool EditorKeys::copyPicture() {
    return handOver(&EditorKeysDelegate::editorKeysCopyPicture);
}

bool EditorKeys::savePicture() {
    return handOver(&EditorKeysDelegate::editorKeysSavePicture);
}

bool EditorKeys::savePictureAs() {
    return handOver(&EditorKeysDelegate::editorKeysSavePictureAs);
}

bool EditorKeys::handOver(PictureTaker taker) {
    const auto editor = _editor.lock();
    const auto delegate = _delegate.lock();
    if (!editor || !delegate) return false;
    const gfx::ImageRef image = editor->exportedImage();
    if (image) (delegate.get()->*taker)(image);
    return image != nullptr;
}

// ---- commands

bool EditorKeys::undo() {
    const auto editor = _editor.lock();
    const auto canvas = editor->drawView();
    // As on the canvas alone, see CanvasKeys.
    if (canvas->forgiving() && !canvas->isPlacingPoints() && canvas->cancelGesture()) return true;
    if (!canvas->canUndo()) return false;
    editor->toolView()->handleUndo();
    return true;
}

bool EditorKeys::redo() {
    const auto editor = _editor.lock();
    if (!editor->drawView()->canRedo()) return false;
    editor->toolView()->handleRedo();
    return true;
}

bool EditorKeys::escape() {
    const auto editor = _editor.lock();
    if (_canvasKeys.perform("escape")) return true;
    if (editor->showPanel() || editor->isAnimation()) {
        editor->clickAtConfirm();
        return true;
    }
    const auto delegate = _delegate.lock();
    if (delegate && delegate->editorKeysEscape()) return true;
    // One Escape too many is no reason to go where a button, or the host, closes.
    if (editor->shell() && !editor->isReadOnly() && putPenDown()) return true;
    if (editor->shell() && !editor->asksBeforeClosing()) return false;
    _remote.askToClose();
    return true;
}

// The pen that selects is in hand then. Whether another one was, and that one is offered.
bool EditorKeys::putPenDown() {
    const auto editor = _editor.lock();
    const auto& offered = editor->offer().pens();
    const bool isOffered =
        !offered || std::ranges::find(*offered, EditorPenSelect) != offered->end();
    if (!isOffered || editor->currentPen() == EditorPenSelect) return false;
    _remote.choosePen(EditorPenSelect);
    return true;
}

bool EditorKeys::confirm() {
    _editor.lock()->toolView()->handleConfirm();
    return true;
}

bool EditorKeys::enter() {
    if (_canvasKeys.perform("enter")) return true;
    const auto delegate = _delegate.lock();
    return (delegate && delegate->editorKeysEnter()) || confirm();
}

bool EditorKeys::copy() {
    return _canvasKeys.perform("ctrl+c") || copyPicture();
}

bool EditorKeys::paste() {
    if (_canvasKeys.perform("ctrl+v")) return true;
    const auto delegate = _delegate.lock();
    if (delegate) delegate->editorKeysPastePicture();
    return delegate != nullptr;
}

bool EditorKeys::saveDocument() {
    const auto delegate = _delegate.lock();
    return delegate && delegate->editorKeysSaveDocument();
}

bool EditorKeys::openFile() {
    const auto delegate = _delegate.lock();
    return delegate && delegate->editorKeysOpenFile();
}

bool EditorKeys::showKeys() {
    // A copy: it may replace itself.
    const std::function<void()> show = _overviewHandler;
    if (show) show();
    return show != nullptr;
}

bool EditorKeys::toggleFullScreen() {
    const auto delegate = _delegate.lock();
    return delegate && delegate->editorKeysToggleFullScreen();
}

bool EditorKeys::takePen(std::string_view key) {
    const auto pen = std::ranges::find_if(
        pens(), [key](const Pen& each) { return each.key && key == each.keyName(); });
    if (pen == pens().end()) return false;
    _remote.choosePen(pen->number);
    return true;
}

template <unsigned index>
bool EditorKeys::takeColor() {
    const auto& dots = _editor.lock()->colorViews();
    if (index < dots.size()) _remote.chooseColor(dots[index]->config()->color());
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
        _remote.chooseLineWidth(*lineWidthForSize(size));
        break;
    }
    return true;
}

bool EditorKeys::thicker() {
    const double before = lineWidth();
    for (unsigned size = 0; size <= largestSize; ++size) {
        if (*lineWidthForSize(size) <= before) continue;
        _remote.chooseLineWidth(*lineWidthForSize(size));
        break;
    }
    return true;
}

}  // namespace kalim
