#include <cstddef>
#include <optional>
#include <utility>

#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void TesselViewController::clickPickImage() {
    ui::Environment& environment = ui::Environment::current();
    if (!environment.isPhotoLibraryAvailable()) return;
    const auto alive = self();
    view();
    const std::weak_ptr<TesselViewController> weakSelf = alive;
    environment.pickImage([weakSelf](const std::optional<gfx::ImageRef>& image) {
        const auto controller = weakSelf.lock();
        if (!controller) return;
        if (image) {
            controller->takePickedImage(*image);
        } else {
            controller->didCancelPicking();
        }
    });
}

void TesselViewController::takePickedImage(const gfx::ImageRef& image) {
    if (!_forgiving) return didPickImage(image);
    if (!image || _editImageInitialView) {
        didCancelPicking();
        return image ? tellThatCropIsOpen() : checkAndTipImageVaild(image);
    }
    if (!hasWork()) return didPickImage(image);
    askToReplaceWork([weakSelf = std::weak_ptr(self()), image](bool isWanted) {
        const auto controller = weakSelf.lock();
        if (!controller) return;
        if (isWanted && !controller->_editImageInitialView) {
            controller->didPickImage(image);
        } else {
            controller->didCancelPicking();
        }
    });
}

void TesselViewController::didPickImage(const gfx::ImageRef& image) {
    _penView->setAlpha(0);
    _shouldBlinkPenview = true;
    if (image) {
        openPicture(image);
    } else {
        _drawView->setSnipImage(nullptr);
    }
    if (!_snipImage) _snipImage = image;
    checkAndTipImageVaild(image);
    // Where the edit buttons are out or on their way, the pen button comes back with their going.
    if (!standInForPenView()) blinkPenview();
}

void TesselViewController::openPicture(const gfx::ImageRef& image) {
    if (!image) return;
    const auto alive = self();
    _hasCropped = false;
    _hasOpenedPicture = true;
    _drawView->setSnipImage(image);
}

void TesselViewController::askToReplaceWork(std::function<void(bool isWanted)> answer) {
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert(
        {environment.localizedString("打开新图片？"),
         environment.localizedString("当前的标注将会丢失"),
         {environment.localizedString("取消"), environment.localizedString("打开")},
         [answer = std::move(answer)](std::size_t button) { answer(button == 1); }});
}

void TesselViewController::tellThatCropIsOpen() {
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert({environment.localizedString("请先完成裁剪"),
                              environment.localizedString("离开裁剪后才能打开新图片"),
                              {environment.localizedString("好")},
                              {}});
}

void TesselViewController::didCancelPicking() {
    if (standInForPenView()) return;
    _penView->setAlpha(1);
    _shouldBlinkPenview = false;
}

void TesselViewController::checkAndTipImageVaild(const gfx::ImageRef& image) {
    if (image && image->pixelSize().width > 0 && image->pixelSize().height > 0) return;
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert({environment.localizedString("无法载入图片"),
                              environment.localizedString("载入此图片时出错"),
                              {environment.localizedString("好")},
                              {}});
}

}  // namespace kalim
