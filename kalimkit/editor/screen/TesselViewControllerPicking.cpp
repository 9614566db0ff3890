#include <cstddef>
#include <optional>
#include <utility>

#include "kalimkit/document/Document.h"
#include "kalimkit/editor/screen/EditorParts.h"
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
    if (!forgiving()) return didPickImage(image);
    if (!image || editImageInitialView()) {
        didCancelPicking();
        return image ? tellThatCropIsOpen() : checkAndTipImageVaild(image);
    }
    if (!hasWork()) return didPickImage(image);
    askToReplaceWork([weakSelf = std::weak_ptr(self()), image](bool isWanted) {
        const auto controller = weakSelf.lock();
        if (!controller) return;
        if (isWanted && !controller->editImageInitialView()) {
            controller->didPickImage(image);
        } else {
            controller->didCancelPicking();
        }
    });
}

void TesselViewController::didPickImage(const gfx::ImageRef& image) {
    parts().pen.vanish();
    parts().pen.setShouldBlink(true);
    parts().picture.takePicked(image);
    checkAndTipImageVaild(image);
    // Where the edit buttons are out or on their way, the pen button comes back with their going.
    if (!parts().buttons.standIn()) blinkPenview();
}

void TesselViewController::openPicture(const gfx::ImageRef& image) {
    if (!image) return;
    const auto alive = self();
    parts().picture.open(image);
}

Document TesselViewController::document() {
    const auto alive = self();
    view();
    return parts().picture.canvas()->document();
}

std::optional<std::string> TesselViewController::openDocument(const Document& document,
                                                              const gfx::ImageRef& picture) {
    const auto alive = self();
    view();
    if (editImageInitialView()) return "it cannot be opened while the picture is being cropped";
    return parts().picture.open(document, picture);
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
    if (parts().buttons.standIn()) return;
    parts().pen.appear();
    parts().pen.setShouldBlink(false);
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
