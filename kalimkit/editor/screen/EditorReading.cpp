#include "kalimkit/editor/screen/EditorReading.h"

#include "kalimkit/editor/screen/EditorParts.h"

namespace kalim {

EditorReading::EditorReading(ui::ViewController& screen)
    : _parts(std::make_unique<EditorParts>(screen)) {}

EditorReading::~EditorReading() = default;

// ---- what it was made with

const gfx::ImageRef& EditorReading::snipImage() const {
    return _parts->picture.snipImage();
}

bool EditorReading::needInitAnimate() const {
    return _parts->transition.isNeeded();
}

const gfx::Rect& EditorReading::fromRect() const {
    return _parts->transition.fromRect();
}

double EditorReading::fromScale() const {
    return _parts->transition.fromScale();
}

// ---- views

const std::shared_ptr<MDrawView>& EditorReading::drawView() const {
    return _parts->picture.canvas();
}

const std::shared_ptr<TesselTopTool>& EditorReading::toolView() const {
    return _parts->bar;
}

const std::shared_ptr<TesselDot>& EditorReading::nibView() const {
    return _parts->nib;
}

const std::shared_ptr<TesselPenView>& EditorReading::penView() const {
    return _parts->pen.view();
}

const std::shared_ptr<TesselConfirmButton>& EditorReading::confirmButton() const {
    return _parts->panel.confirmButton();
}

const std::shared_ptr<QNTMaskView>& EditorReading::maskView() const {
    return _parts->panel.mask();
}

const std::shared_ptr<ui::View>& EditorReading::panelView() const {
    return _parts->panel.view();
}

const std::shared_ptr<TesselPopView>& EditorReading::colorPopView() const {
    return _parts->pickers.colorPicker();
}

const std::shared_ptr<TesselPopView>& EditorReading::sizePopView() const {
    return _parts->pickers.sizePicker();
}

const std::shared_ptr<TesselPopView>& EditorReading::penPopView() const {
    return _parts->pickers.penPicker();
}

const std::shared_ptr<ui::Button>& EditorReading::configViewEdit() const {
    return _parts->buttons.editButton();
}

const std::shared_ptr<ui::Button>& EditorReading::configViewDelete() const {
    return _parts->buttons.deleteButton();
}

const std::shared_ptr<ui::ImageView>& EditorReading::viewAnimateImageView() const {
    return _parts->transition.view();
}

const std::shared_ptr<KLMActionsheetView>& EditorReading::actionSheet() const {
    return _parts->closing.sheet();
}

const std::shared_ptr<EditImageIntialView>& EditorReading::editImageInitialView() const {
    return _parts->crop.editor();
}

// ---- the pickers' dots

const EditorReading::Dots& EditorReading::colorViews() const {
    return _parts->pickers.colorDots();
}

const EditorReading::Dots& EditorReading::sizeViews() const {
    return _parts->pickers.sizeDots();
}

const EditorReading::Dots& EditorReading::penViews() const {
    return _parts->pickers.penDots();
}

const EditorReading::Dots& EditorReading::shapeViews() const {
    return _parts->pickers.shapeDots();
}

// ---- the tool that the user has

unsigned EditorReading::currentType() const {
    return _parts->choice.type();
}

unsigned EditorReading::currentShape() const {
    return _parts->choice.shape();
}

unsigned EditorReading::currentPen() const {
    return _parts->choice.pen();
}

unsigned EditorReading::currentSize() const {
    return _parts->choice.size();
}

const gfx::ColorRef& EditorReading::currentColor() const {
    return _parts->choice.color();
}

// ---- states

bool EditorReading::showPanel() const {
    return _parts->panel.restedOpen();
}

bool EditorReading::isAnimation() const {
    return _parts->panel.isMoving();
}

bool EditorReading::isPanelUp() const {
    return _parts->panel.isUp();
}

bool EditorReading::elementSelected() const {
    return _parts->picture.hasSelection();
}

bool EditorReading::lockConfigView() const {
    return _parts->buttons.isLocked();
}

bool EditorReading::isConfigViewOut() const {
    return _parts->buttons.isOut();
}

bool EditorReading::isConfigViewWillOut() const {
    return _parts->picture.hasSelection();
}

bool EditorReading::shouldBlinkPenview() const {
    return _parts->pen.shouldBlink();
}

bool EditorReading::isImageCroped() const {
    return _parts->picture.isCroped();
}

bool EditorReading::hasCropped() const {
    return _parts->picture.hasCropped();
}

bool EditorReading::hasOpenedPicture() const {
    return _parts->picture.hasOpened();
}

double EditorReading::padding() const {
    return _parts->pickers.padding();
}

double EditorReading::offset() const {
    return _parts->pickers.offset();
}

}  // namespace kalim
