#pragma once

#include <memory>
#include <string>

#include "kalimkit/gfx/Device.h"

namespace kalim::test {

// The device that a program's tests are about, shared by all of them so that fonts are loaded once.
// Each program has its own.
gfx::Device& testDevice();
// How far the width of a line of text at 15 points may be off, in points.
double widthTolerance();
// How far a shadow, blurred with this standard deviation in pixels, and what casts it may be off,
// in levels of alpha.
double shadowTolerance(double sigma);
// How far a blurred shadow may be off, in levels, where only a part of it is drawn.
double clipTolerance();
bool castsShadowsOfOutlinedText();
// Whether there is room for pictures that are longer than any surface.
bool keepsLongPictures();

// A surface to draw on and to look at.
class Canvas {
public:
    // In points.
    Canvas(double width, double height, double scale = 1, bool opaque = false);

    gfx::Context& context() { return _surface->context(); }
    gfx::Surface& surface() { return *_surface; }
    gfx::BitmapRef pixels() { return _surface->makeImage()->pixels(); }
    // "#RRGGBBAA" of a pixel, counted in device pixels.
    std::string at(int x, int y) { return pixels()->colorAt(x, y).hex(); }

private:
    std::shared_ptr<gfx::Surface> _surface;
};

// The smallest rectangle in pixels that holds every pixel whose alpha is at least that.
gfx::Rect inkBox(const gfx::Bitmap& bitmap, int alpha = 1);

// The alpha byte of a pixel.
inline int alphaAt(const gfx::Bitmap& bitmap, int x, int y) {
    return bitmap.row(y)[4 * static_cast<std::size_t>(x) + 3];
}

}  // namespace kalim::test
