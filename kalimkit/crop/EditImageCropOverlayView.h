#pragma once

#include <cstdint>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// Darkens everything outside the bright frame, at one of three levels. It takes no touches.
class KALIM_API EditImageCropOverlayView : public ui::View {
public:
    static std::shared_ptr<EditImageCropOverlayView> initWithFrame(const gfx::Rect& frame);

    // Own coordinates; the hole is a point larger on every side. Nothing is dark at first,
    // nor where the bright frame is the overlay's own frame.
    const gfx::Rect& brightFrame() const { return _brightFrame; }
    void setBrightFrame(const gfx::Rect& frame);
    // How much larger the overlay is shown than it is: the point around the hole is one of what is
    // seen. 1 at first; ignored unless positive.
    double zoomScale() const { return _zoomScale; }
    void setZoomScale(double scale);
    // 1 is opaque, 2 dims, 3 shows everything. Any other number is kept and changes nothing that is
    // seen. Animates within an animation.
    std::int32_t overlayLevel() const { return _overlayLevel; }
    void setOverlayLevel(std::int32_t level);

    // What is dark. Its alpha is the level's; its mask leaves out the bright frame.
    const std::shared_ptr<ui::View>& blackLayer() const { return _blackLayer; }

protected:
    EditImageCropOverlayView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    gfx::Rect layerRect() const;
    void updateMask();
    void setMaskPath(gfx::Path dark);

    std::shared_ptr<ui::View> _blackLayer;
    gfx::Rect _brightFrame;
    double _zoomScale = 1;
    std::int32_t _overlayLevel = 0;
};

}  // namespace kalim
