#include "kalimkit/image/EditImageUtil.h"

#include <cmath>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

void EditImageUtil::savePhotoToSystemAlbum(const gfx::ImageRef& image) {
    if (!isNeedSaveEditedPhoto() || !image) return;
    if (const auto library = ui::Environment::current().makePhotoLibrary()) {
        library->writeImage(image, {});
    }
}

float EditImageUtil::getNearByInt(float v) {
    const auto scale = static_cast<float>(ui::Environment::current().screen().scale);
    return std::nearbyint(v * scale) / scale;
}

void EditImageUtil::setAnchorPointForView(gfx::Point anchorPoint,
                                          const std::shared_ptr<ui::View>& view) {
    if (!view) return;
    const gfx::Point origin = view->frame().origin;
    view->setAnchorPoint(anchorPoint);
    view->setCenter(view->center() - (view->frame().origin - origin));
}

}  // namespace kalim
