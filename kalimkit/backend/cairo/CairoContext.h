#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/backend/cairo/CairoResources.h"
#include "kalimkit/backend/cairo/DeviceBox.h"
#include "kalimkit/gfx/Context.h"

namespace kalim::gfx {

// Draws on a Cairo surface. Between two calls the matrix of every Cairo context here is the
// identity: paths are traced in device pixels, and what needs a matrix sets it for itself.
class CairoContext : public Context {
public:
    // `scale` is the surface's pixels per point.
    CairoContext(cairo_surface_t* surface, double scale, std::shared_ptr<CairoResources> resources);

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
    // Paints a shape with its paint and alpha, under the operator in force.
    using Painter = std::function<void(cairo_t*)>;

    // A surface under an open group; the first is the context's own.
    struct Layer {
        SurfaceHandle surface;
        ContextHandle context;
        DeviceBox box;
        // What has been drawn so far lies in here.
        DeviceBox painted;

        void markPainted(const DeviceBox& drawn);
    };

    cairo_t* target() const { return _layers.back().context.get(); }
    AffineTransform toDevice() const;

    // Everything painted goes through here: the shadow first, then the shape itself.
    void paint(const Rect& bounds, const Painter& painter);
    void paintShadow(const Rect& bounds, const DeviceBox& visible, const Painter& painter);
    // Both are pixels.
    double shadowSigma() const;
    int shadowReach() const;

    void paintColorText(cairo_t* context, const ShapedText& text,
                        const AffineTransform& placed) const;
    // These paint the context's current path with the state's paint.
    void fillPath(cairo_t* context) const;
    void strokePath(cairo_t* context) const;
    // Fills the current path with the source as it is set, its alpha multiplied.
    void fillSource(cairo_t* context, double alpha) const;
    // Paints the source, its alpha multiplied, within the clip.
    void paintSource(cairo_t* context, double alpha) const;
    // A stroke for the blend mode SourceIn, which Cairo would apply to the whole surface.
    void strokeWithin(cairo_t* context, const cairo_matrix_t& pen) const;

    double _scale;
    std::shared_ptr<CairoResources> _resources;
    std::vector<Layer> _layers;
};

}  // namespace kalim::gfx
