#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Context.h"

namespace kalim::gfx {

class HtmlRaster;

// Draws with a context of the page, directly: the page keeps the clip and the layers of groups, and
// is told everything else with each thing that is painted.
class HtmlContext : public Context {
public:
    // The number is that of the surface.
    HtmlContext(int surface, PixelSize size, double scale);

    double deviceScale() const override { return _scale; }

protected:
    void onSave() override;
    void onRestore() override;
    void onClip(const Path& path) override;
    void onFill(const Path& path) override;
    void onStroke(const Path& path) override;
    void onDrawRaster(const Image& image, const Rect& rect) override;
    void onDrawSurface(Surface& surface, const Rect& rect) override;
    void onDrawText(std::string_view text, Point baseline, const Font& font) override;
    void onBeginGroup() override;
    void onEndGroup() override;

private:
    // An open group: what it keeps of the surface, pixels, and whether it or one around it casts a
    // shadow.
    struct Group {
        Rect box;
        bool castsShadow = false;
    };

    AffineTransform toDevice() const;
    void prepare(Interpolation interpolation) const;
    bool prepareFill(std::shared_ptr<const HtmlRaster>& held) const;
    void drawSource(int source, PixelSize size, const Rect& rect) const;
    std::optional<Path> snapped(const Path& path) const;
    Group groupBox() const;

    int _surface;
    PixelSize _size;
    double _scale;
    std::vector<Group> _groups;
};

}  // namespace kalim::gfx
