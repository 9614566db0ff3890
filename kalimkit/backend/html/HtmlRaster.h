#pragma once

#include <memory>

#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

// A picture that the page keeps. It is given back with the raster.
class HtmlRaster : public Raster {
public:
    // Takes over a number that the page has given out; nothing for 0.
    static std::shared_ptr<const HtmlRaster> adopt(int picture);
    // That of the image, or a copy of its pixels that the page can use; null where there is no room
    // for one.
    static std::shared_ptr<const HtmlRaster> of(const Image& image);
    ~HtmlRaster() override;
    HtmlRaster(const HtmlRaster&) = delete;
    HtmlRaster& operator=(const HtmlRaster&) = delete;

    int picture() const { return _picture; }
    PixelSize size() const override { return _size; }
    // Read from the page, and kept for as long as somebody uses them.
    BitmapRef pixels() const override;

private:
    explicit HtmlRaster(int picture);

    int _picture;
    PixelSize _size;
    mutable std::weak_ptr<const Bitmap> _pixels;
};

}  // namespace kalim::gfx
