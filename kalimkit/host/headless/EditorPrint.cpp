#include "kalimkit/host/headless/EditorPrint.h"

#include <string>
#include <utility>

#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/host/headless/EditorViews.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ImageView.h"
#include "kalimkit/ui/control/Label.h"
#include "kalimkit/ui/desk/DeskButton.h"
#include "kalimkit/ui/desk/Slider.h"

namespace kalim {

namespace {

// The name of the picture that a view shows; empty for one that shows none of the editor's own.
std::string shownImageName(const ui::View& view) {
    gfx::ImageRef image;
    if (const auto* button = dynamic_cast<const ui::Button*>(&view)) {
        image = button->currentImage() ? button->currentImage() : button->currentBackgroundImage();
    } else if (const auto* dot = dynamic_cast<const TesselDot*>(&view)) {
        if (dot->iconView()) image = dot->iconView()->image();
    } else if (const auto* mask = dynamic_cast<const QNTMaskView*>(&view)) {
        image = mask->gradientView()->image();
    }
    return frameworkImageName(image);
}

JsonValue describeView(const ui::View& view) {
    JsonValue::Object members{
        {"frame", toJson(view.convertRectTo(view.bounds(), nullptr))},
        {"alpha", view.alpha()},
        {"hidden", view.isHidden()},
    };
    if (const auto* control = dynamic_cast<const ui::Control*>(&view)) {
        members.emplace_back("enabled", control->isEnabled());
    }
    if (const auto* button = dynamic_cast<const ui::Button*>(&view)) {
        if (!button->currentTitle().empty()) members.emplace_back("title", button->currentTitle());
    }
    if (const auto* button = dynamic_cast<const ui::DeskButton*>(&view)) {
        if (!button->title().empty()) members.emplace_back("title", button->title());
        members.emplace_back("selected", button->isSelected());
    }
    if (const auto* label = dynamic_cast<const ui::Label*>(&view)) {
        members.emplace_back("title", label->text());
    }
    if (const auto* slider = dynamic_cast<const ui::Slider*>(&view)) {
        members.emplace_back("value", slider->value());
    }
    if (std::string name = shownImageName(view); !name.empty()) {
        members.emplace_back("image", std::move(name));
    }
    members.emplace_back("shown", JsonValue::Object{{"frame", toJson(view.shownRectInWindow())},
                                                    {"alpha", view.shownAlpha()}});
    JsonValue::Array keys;
    for (const std::string& key : view.runningAnimationKeys())
        keys.emplace_back(key);
    members.emplace_back("animations", std::move(keys));
    return members;
}

JsonValue describeViews(const TesselViewController& editor) {
    JsonValue::Object views;
    for (const NamedView& named : editorViews(editor))
        views.emplace_back(named.path, describeView(*named.view));
    return views;
}

JsonValue describeState(const TesselViewController& editor) {
    return JsonValue::Object{
        {"currentType", editor.currentType()},
        {"currentColor", toJson(editor.currentColor())},
        {"currentSize", editor.currentSize()},
        {"currentPen", editor.currentPen()},
        {"currentShape", editor.currentShape()},
        {"showPanel", editor.showPanel()},
        {"isAnimation", editor.isAnimation()},
        {"elementSelected", editor.elementSelected()},
        {"isConfigViewOut", editor.isConfigViewOut()},
        {"isConfigViewWillOut", editor.isConfigViewWillOut()},
        {"lockConfigView", editor.lockConfigView()},
        {"padding", editor.padding()},
        {"offset", editor.offset()},
        {"needInitAnimate", editor.needInitAnimate()},
        {"isImageCroped", editor.isImageCroped()},
        {"shouldBlinkPenview", editor.shouldBlinkPenview()},
    };
}

void describePicker(const char* name, const std::shared_ptr<TesselPopView>& picker,
                    JsonValue::Object& members) {
    if (!picker) return;
    members.emplace_back(name, JsonValue::Object{{"selectIndex", picker->selectIndex()},
                                                 {"isFold", picker->isFold()},
                                                 {"enable", picker->enable()}});
}

JsonValue describePickers(const TesselViewController& editor) {
    JsonValue::Object pickers;
    describePicker("colorPopView", editor.colorPopView(), pickers);
    describePicker("sizePopView", editor.sizePopView(), pickers);
    describePicker("penPopView", editor.penPopView(), pickers);
    if (const auto& pen = editor.penView()) {
        pickers.emplace_back("pen",
                             JsonValue::Object{{"pen", pen->pen()},
                                               {"size", pen->size()},
                                               {"color", toJson(pen->color())},
                                               {"canUseRingAnimation", pen->canUseRingAnimation()},
                                               {"ringing", pen->isRinging()}});
    }
    return pickers;
}

JsonValue describeInsets(const ui::EdgeInsets& insets) {
    return JsonValue::Array{insets.top, insets.left, insets.bottom, insets.right};
}

// What crop mode needs is there only once it has begun.
JsonValue describeCrop(const TesselViewController& editor) {
    const auto& crop = editor.editImageInitialView();
    if (!crop) return {};
    const EditImageScrollView& picture = *crop->eIScrollView();
    const EditImageCropOverlayView& overlay = *picture.imageView()->overlayView();
    return JsonValue::Object{
        {"cropFrame", toJson(crop->cropFrame())},
        {"cropOriginalFrame", toJson(crop->cropOriginalFrame())},
        {"contentFrame", toJson(crop->contentFrame())},
        {"cropEdge", static_cast<int>(crop->cropEdge())},
        {"currentRotationOrientation", crop->currentRotationOrientation()},
        {"isRotationIconLocked", crop->isRotationIconLocked()},
        {"isCropOver", crop->isCropOver()},
        {"canRevert", crop->canRevert()},
        {"overlayLevel", overlay.overlayLevel()},
        {"brightFrame", toJson(overlay.brightFrame())},
        {"imageFrame", toJson(picture.imageFrame())},
        {"zoomScale", picture.zoomScale()},
        {"contentOffset", toJson(picture.contentOffset())},
        {"contentInset", describeInsets(picture.contentInset())},
        {"timer", crop->isTimerRunning()},
        {"isCropStartAnimationReady", crop->isCropStartAnimationReady()},
    };
}

JsonValue describeTransition(const TesselViewController& editor) {
    const auto& picture = editor.viewAnimateImageView();
    if (!picture) return {};
    return JsonValue::Object{{"frame", toJson(picture->shownRectInWindow())},
                             {"scale", picture->shownTransform().a}};
}

// Lists the titles from top to bottom.
JsonValue describeSheet(const TesselViewController& editor) {
    const auto& sheet = editor.actionSheet();
    if (!sheet) return {};
    JsonValue::Array titles;
    for (const auto& button : sheet->buttons())
        titles.emplace_back(button->currentTitle());
    return titles;
}

}  // namespace

JsonValue::Object describeEditor(const TesselViewController& editor) {
    return {
        {"views", describeViews(editor)},           {"state", describeState(editor)},
        {"pickers", describePickers(editor)},       {"crop", describeCrop(editor)},
        {"transition", describeTransition(editor)}, {"sheet", describeSheet(editor)},
    };
}

}  // namespace kalim
