#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "kalimkit/crop/EditImageCropOverlayView.h"
#include "kalimkit/crop/EditImageOperationDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/image/PictureReductions.h"
#include "kalimkit/ui/control/ImageView.h"

namespace kalim {

// The picture under edit, which fills the view, and over it the overlay that dims what is outside
// of the crop frame.
class KALIM_API EditImageView : public ui::ImageView {
public:
    static std::shared_ptr<EditImageView> initWithFrame(const gfx::Rect& frame);

    // The number of the tool that fingers use; -1 for none.
    std::int32_t imageTool() const { return _imageTool; }
    void useImageTool(std::int32_t tool) { _imageTool = tool; }
    // Shows an upright picture after quarter turns to the left, 0 to 3, as an image of the same
    // raster in another orientation: its pixels stay where they are. Null for none.
    void showPicture(const gfx::ImageRef& upright, std::int32_t quarterTurns);
    // Of the picture as it is seen; empty without one.
    gfx::Size pixelsSeen() const;
    // Puts the tool down and shows the whole picture without any dimming.
    void onClickCancelBtn();
    // The tool has begun to draw on the picture, or is done with it.
    void editImageViewDidStartDraw();
    void editImageViewdidEndDraw();

    // It is as large as the view.
    const std::shared_ptr<EditImageCropOverlayView>& overlayView() const { return _overlayView; }

    // ---- delegate
    void setDelegate(std::weak_ptr<EditImageOperationDelegate> delegate) {
        _delegate = std::move(delegate);
    }

protected:
    EditImageView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    static bool drawCoarsely(gfx::Context& context, const gfx::Image& copy, const gfx::Rect& rect,
                             double scale);
    gfx::ImageRef copyFor(const gfx::Context& context, const gfx::Rect& rect,
                          double pixelsPerPoint);
    gfx::ImageRef turnedCopy(const gfx::ImageRef& copy);

    std::int32_t _imageTool = -1;
    // Of the picture before it is turned.
    PictureReductions _reductions;
    // The copy that was turned last, and what came of it.
    gfx::ImageRef _copy;
    gfx::ImageRef _turnedCopy;
    std::shared_ptr<EditImageCropOverlayView> _overlayView;
    std::weak_ptr<EditImageOperationDelegate> _delegate;
};

}  // namespace kalim
