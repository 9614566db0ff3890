#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/crop/CropLayout.h"
#include "kalimkit/crop/EditImageOperationDelegate.h"
#include "kalimkit/crop/EditImageView.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

namespace kalim {

// Holds the picture of the crop editor, which fingers move and zoom under the crop frame. The
// content is the picture alone, its corner at the content's origin; the inset lets its edges come
// as far as those of the frame. It shows, and takes touches, beyond its bounds.
class KALIM_API EditImageScrollView : public ui::ScrollView, public EditImageOperationDelegate {
public:
    static std::shared_ptr<EditImageScrollView> initWithFrame(const gfx::Rect& frame);

    // ---- the picture
    const std::shared_ptr<EditImageView>& imageView() const { return _imageView; }
    // Where the picture is shown, coordinates of the superview.
    gfx::Rect imageFrame() const;
    // Lays out the picture: its size at a zoom of 1, and where it is shown (coordinates of the
    // superview) at the zoom. Widens the zoom limits where they exclude it.
    void placeImage(gfx::Size size, double zoomScale, gfx::Point origin);
    // Between which zooms the picture covers a frame of that size, see cropZoomLimits().
    CropZoomLimits zoomLimitsFor(gfx::Size frame) const;
    // The nearest offset at which the picture covers what the inset says.
    gfx::Point coveringOffset(gfx::Point offset) const;

    // ---- tools
    // Switches the recognisers of the drawing tools (0 to 3, and 5) on, and for any other tool off.
    void useImageTool(std::int32_t tool);
    bool areToolGesturesEnabled() const { return _toolRotation->isEnabled(); }
    const std::shared_ptr<ui::RotationGestureRecognizer>& rotationGestureRecognizer() const {
        return _toolRotation;
    }
    void onClickCancelBtn() { _imageView->onClickCancelBtn(); }
    // Off while the crop frame is dragged: no recogniser of this view gets new touches.
    void setAdmitsGestures(bool admits) { _admitsGestures = admits; }
    bool admitsGesture(const ui::GestureRecognizer& recognizer) const override;
    // Told when a touch has landed meanwhile, perhaps more than once.
    void setRefusalHandler(std::function<void()> handler) { _refused = std::move(handler); }

    // ---- the crop
    // What was cut out, in the picture's own coordinates; before that the frame where the picture
    // is shown.
    gfx::Rect cropFrame() const { return _cropFrame.value_or(imageFrame()); }
    // Takes what was cut out, and limits zoom and offset by the frame that was kept last.
    void cropImage(const gfx::Rect& frame);
    void adjustScrollViewZoomScale();
    void adjustScrollViewContentInset();
    // Quarter turns that were confirmed, 0 to 3. Only kept here.
    std::int32_t rotationOrientationOverall() const { return _rotationOrientationOverall; }
    void onImageRotatedByOrientation(std::int32_t orientation) {
        _rotationOrientationOverall = orientation;
    }

    // ---- kept for the crop editor: frames of the superview, except the last crop frame, which is
    // in the picture's own coordinates
    const gfx::Rect& lastGridFrame() const { return _lastGridFrame; }
    void setLastGridFrame(const gfx::Rect& frame) { _lastGridFrame = frame; }
    double lastScale() const { return _lastScale; }
    void setLastScale(double scale) { _lastScale = scale; }
    gfx::Point lastOffset() const { return _lastOffset; }
    void setLastOffset(gfx::Point offset) { _lastOffset = offset; }
    const gfx::Rect& lastCropFrame() const { return _lastCropFrame; }
    void setLastCropFrame(const gfx::Rect& frame) { _lastCropFrame = frame; }
    const gfx::Rect& initialFrame() const { return _initialFrame; }
    void setInitialFrame(const gfx::Rect& frame) { _initialFrame = frame; }

    // ---- delegate of the drawing on the picture
    void setM_delegate(std::weak_ptr<EditImageOperationDelegate> delegate) {
        _m_delegate = std::move(delegate);
    }
    void editImageViewDidStartDraw() override;
    void editImageViewdidEndDraw() override;

    bool pointInside(gfx::Point /*p*/) const override { return true; }

protected:
    EditImageScrollView() = default;
    void init(const gfx::Rect& frame) override;

private:
    std::shared_ptr<EditImageView> _imageView;
    std::shared_ptr<ui::RotationGestureRecognizer> _toolRotation;
    // These are all of the drawing tools' recognisers.
    std::array<std::shared_ptr<ui::GestureRecognizer>, 5> _toolGestures;
    bool _admitsGestures = true;
    std::function<void()> _refused;
    std::optional<gfx::Rect> _cropFrame;
    std::int32_t _rotationOrientationOverall = 0;
    gfx::Rect _lastGridFrame;
    double _lastScale = 1;
    gfx::Point _lastOffset;
    gfx::Rect _lastCropFrame;
    gfx::Rect _initialFrame;
    std::weak_ptr<EditImageOperationDelegate> _m_delegate;
};

}  // namespace kalim
