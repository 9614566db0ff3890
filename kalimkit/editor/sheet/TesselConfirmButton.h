#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/motion/ShapeLayer.h"

namespace kalim {

// The round check mark over the pen button while the panel is open.
class KALIM_API TesselConfirmButton : public ui::Button {
public:
    static std::shared_ptr<TesselConfirmButton> init();

    // The check mark is drawn in.
    void ApperaWithDuration(double seconds);
    // The check mark is wiped out and stays away, while the button shrinks and comes back, which
    // takes twice as long. What is set does not change, only what is shown.
    void DisApperaWithDuration(double seconds);

    // The filled circle and the check mark, own coordinates.
    const gfx::Path& backgroundPath() const { return _backgroundPath; }
    const gfx::Path& goPath() const { return _goPath; }
    const std::shared_ptr<ui::ShapeLayer>& shapelayer() const { return _shapelayer; }
    int tag() const { return _tag; }
    void setTag(int tag) { _tag = tag; }

protected:
    TesselConfirmButton() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void initUI();

    gfx::Path _backgroundPath;
    gfx::Path _goPath;
    std::shared_ptr<ui::ShapeLayer> _shapelayer;
    int _tag = 0;
};

}  // namespace kalim
