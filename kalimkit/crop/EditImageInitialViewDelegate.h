#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/image/PictureCut.h"

namespace kalim {

// Who opens the crop editor, gives it its picture and gets the result. It may let go of the editor
// within any of these.
class KALIM_API EditImageInitialViewDelegate {
public:
    using OriginalImageCallback =
        std::function<void(const gfx::ImageRef& image, std::int32_t orientation)>;
    using DisplayImageCallback = std::function<void(
        const gfx::ImageRef& image, std::int32_t orientation, std::int32_t entrance)>;

    virtual ~EditImageInitialViewDelegate() = default;

    // The picture to crop; the callback may be called later, and null means that there is none.
    virtual void getOriginalImage(const OriginalImageCallback& /*callback*/) {}
    // A picture to show until the one above is there; may be null.
    virtual void getDisplayImage(const DisplayImageCallback& /*callback*/) {}
    // Where the picture to crop is seen when it is handed over, coordinates of the editor's
    // superview: the opening begins there. Nothing where it is not seen.
    virtual std::optional<gfx::Rect> originalImageFrame() { return std::nullopt; }

    // The part of it that the frame lies around at first, its pixels; nothing for all of it. The
    // picture is handed over before.
    virtual std::optional<gfx::Rect> originalCrop() { return std::nullopt; }

    // What was chosen, as a cut of the picture that was handed over, and where that is seen,
    // coordinates of the editor's superview. Answers whether the delegate makes of it what it
    // wants: no picture is cut out then, and onCropImageDone does not come.
    virtual bool onCropChosen(const PictureCut& /*cut*/, const gfx::Rect& /*frame*/) {
        return false;
    }
    // What was cut out: scale 1, upright. Sent before OnClickEditImageDoneBarButton.
    virtual void onCropImageDone(const gfx::ImageRef& /*image*/) {}
    virtual void OnClickEditImageDoneBarButton() {}
    // Tells that the user left without applying.
    virtual void OnClickEditImageBackBarButton() {}
};

}  // namespace kalim
