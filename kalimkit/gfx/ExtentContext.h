#pragma once

#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

// Paints nothing and finds out where painting would: a box that holds everything drawn, pens,
// shadows and the overhang of glyphs included. Never too small; somewhat too large for mitred
// corners and text, and because clips are not heeded.
class KALIM_API ExtentContext : public Context {
public:
    enum class Shadows { Counted, LeftOut };

    // The device measures text. It must outlive the context.
    explicit ExtentContext(Device& device, Shadows shadows = Shadows::Counted)
        : _device(device), _shadows(shadows) {}

    // In the surface's points; empty while nothing has been drawn.
    const Rect& extent() const { return _extent; }

protected:
    void onSave() override {}
    void onRestore() override {}
    void onClip(const Path&) override {}
    void onFill(const Path& path) override;
    void onStroke(const Path& path) override;
    void onDrawRaster(const Image& image, const Rect& rect) override;
    void onDrawSurface(Surface& surface, const Rect& rect) override;
    void onDrawText(std::string_view text, Point baseline, const Font& font) override;
    void onBeginGroup() override;
    void onEndGroup() override;

private:
    // In the surface's points; adds the shadow, too.
    void paint(const Rect& bounds);
    void include(const Rect& bounds);
    // How far the pen reaches from the path, in the surface's points.
    double penReach() const;

    Device& _device;
    Shadows _shadows;
    Rect _extent;
    // What had been drawn when each open group began.
    std::vector<Rect> _outside;
};

}  // namespace kalim::gfx
