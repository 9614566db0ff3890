#include "kalimkit/editor/screen/EditorRemote.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

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

EditorRemote::EditorRemote(std::weak_ptr<TesselViewController> editor)
    : _editor(std::move(editor)) {}

EditorRemote::~EditorRemote() {
    _offer.end(false);
}

void EditorRemote::choosePen(unsigned pen) {
    const auto editor = _editor.lock();
    if (!editor || !editor->penPopView()) return;
    if (pen != EditorPenSelect) editor->drawView()->selectNone();
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

void EditorRemote::chooseColor(const gfx::ColorRef& color) {
    const auto editor = _editor.lock();
    if (!color || !editor || !editor->colorPopView()) return;
    const auto config = TesselConfig::create();
    config->setType(0);
    config->setColor(color);
    choose(*editor, editor->colorViews(), *editor->colorPopView(), config,
           [&](const TesselConfig& dot) { return *dot.color() == *color; });
}

void EditorRemote::chooseLineWidth(double width) {
    const auto editor = _editor.lock();
    if (!editor || !editor->sizePopView()) return;
    const auto config = TesselConfig::create();
    config->setType(1);
    for (unsigned size = 0; lineWidthForSize(size); ++size) {
        if (*lineWidthForSize(size) != width) continue;
        config->setSize(size);
        choose(
            *editor, editor->sizeViews(), *editor->sizePopView(), config,
            [size](const TesselConfig& dot) { return !dot.hidingStyle() && dot.size() == size; });
        return;
    }
    editor->drawView()->setDrawLineWidth(width);
    editor->rememberTool();
    editor->tellShell();
}

bool EditorRemote::chooseProperty(const std::string& name, const ToolPropertyValue& value) {
    const auto editor = _editor.lock();
    if (!editor || !editor->drawView()) return false;
    const bool isTaken = editor->drawView()->setToolProperty(name, value);
    editor->rememberTool();
    editor->tellShell();
    return isTaken;
}

void EditorRemote::chooseHidingStyle(std::uint64_t drawType) {
    const auto editor = _editor.lock();
    if (!editor || !editor->sizePopView() || !hidingStyleOf(drawType)) return;
    if (editor->currentPen() != EditorPenMosaic)
        return editor->drawView()->setDrawTypeForType(drawType, ToolType::Mosaic);
    const auto config = TesselConfig::create();
    config->setType(1);
    config->setHidingStyle(drawType);
    editor->clickDotWithConfig(config);
}

void EditorRemote::showNote(const std::string& text) {
    const auto editor = _editor.lock();
    if (editor && editor->shell()) editor->shell()->showNote(text);
}

void EditorRemote::askToClose() {
    const auto editor = _editor.lock();
    if (!editor || !editor->toolView() || editor->actionSheet()) return;
    // One question at a time: the keys would answer the covered one.
    const bool isAsked = editor->window() && ui::AlertView::topmostIn(*editor->window());
    if (!isAsked || !editor->asksBeforeClosing()) editor->toolView()->handleClose();
}

void EditorRemote::openPicture(const gfx::ImageRef& image, OpeningAnswer answer) {
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

void EditorRemote::refusePicture(const std::string& reason) {
    if (_editor.expired()) return;
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert({environment.localizedString("无法载入图片"),
                              reason,
                              {environment.localizedString("好")},
                              {}});
}

void EditorRemote::Offer::end(bool isOpened) const {
    if (answer) answer(isOpened);
}

void EditorRemote::decideOffer(bool isWanted) {
    const Offer offer = std::exchange(_offer, {});
    const auto editor = _editor.lock();
    const bool isOpened = isWanted && editor && !editor->editImageInitialView();
    if (isOpened) editor->openPicture(offer.image);
    offer.end(isOpened);
}

void EditorRemote::askToOpen() {
    _editor.lock()->askToReplaceWork([weakAlive = std::weak_ptr(_self)](bool isWanted) {
        if (const auto remote = weakAlive.lock()) (*remote)->decideOffer(isWanted);
    });
}

}  // namespace kalim
