#pragma once

#include <memory>

#include "kalimkit/backend/html/HtmlContext.h"
#include "kalimkit/gfx/Surface.h"

namespace kalim::gfx {

// A canvas of the page that is not shown.
class HtmlSurface : public Surface {
public:
    // Fails as Device::makeSurface does.
    static std::shared_ptr<HtmlSurface> make(Size size, double scale, bool opaque);
    ~HtmlSurface() override;
    HtmlSurface(const HtmlSurface&) = delete;
    HtmlSurface& operator=(const HtmlSurface&) = delete;

    // The page knows the surface by this number.
    int number() const { return _number; }
    PixelSize pixelSize() const override { return _size; }
    double scale() const override { return _scale; }
    bool isOpaque() const override { return _isOpaque; }
    Context& context() override { return _context; }
    ImageRef makeImage() override;

private:
    HtmlSurface(int number, PixelSize size, double scale, bool opaque);

    int _number;
    PixelSize _size;
    double _scale;
    bool _isOpaque;
    HtmlContext _context;
};

}  // namespace kalim::gfx
