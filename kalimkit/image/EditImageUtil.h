#pragma once

#include <cstdint>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// Rules of image editing. How devices, pictures and occasions are classified is fixed here: every
// picture gets the same treatment. A scene is a number of the application's, and may be any.
class KALIM_API EditImageUtil {
public:
    static bool isLowDevice() { return false; }
    static bool isHighResolution(const gfx::ImageRef& /*image*/) { return true; }
    static std::int32_t numberOfPenCountsPerRender() { return 200; }
    static gfx::Size getEditImageResultSizeIfLongImage(const gfx::ImageRef& /*image*/) {
        return {200, 200};
    }
    static bool isLongPressEntrance(std::int32_t /*scene*/) { return false; }
    static bool isCropOnlyScene(std::int32_t /*scene*/) { return true; }
    static std::int32_t convertImagePickerSceneToEditImageScene(std::int32_t /*scene*/) {
        return 0;
    }
    // Whether an edited photo is also written to the photo library.
    static bool isNeedSaveEditedPhoto() { return false; }
    // Writes to the saved photos, and only when isNeedSaveEditedPhoto() says so.
    static void savePhotoToSystemAlbum(const gfx::ImageRef& image);
    // The nearest device pixel of the screen, points; halves go to the even pixel. Single
    // precision, deliberately.
    static float getNearByInt(float v);
    // Makes it the point about which the view turns and scales, in terms of its sides; the view
    // stays where it is. Null is ignored.
    static void setAnchorPointForView(gfx::Point anchorPoint,
                                      const std::shared_ptr<ui::View>& view);
};

}  // namespace kalim
