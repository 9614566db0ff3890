#pragma once

#include <optional>
#include <variant>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

enum class LineCap { Butt, Round, Square };
enum class LineJoin { Miter, Round, Bevel };
// Normal paints over, SourceIn keeps the new paint only where there was some, Copy replaces, Clear
// erases to transparent (to black on an opaque surface), Multiply darkens what is there as a marker
// pen does, and paints over where there is nothing. All of them leave what lies outside the painted
// shape as it is.
enum class BlendMode { Normal, SourceIn, Copy, Clear, Multiply };
// How images are resampled: None takes the nearest pixel, High also averages when shrinking.
enum class Interpolation { None, Low, High };
enum class TextMode { Fill, Stroke };

// Drawn under everything painted while it is set. Offset (y downwards) and blur are in points of
// the surface and do not follow the current transform. The blur is a Gaussian with a standard
// deviation of half the value. The shadow is as translucent as what casts it; only the blend mode
// Normal casts one.
struct Shadow {
    Point offset;
    double blur = 0;
    Color color;

    bool operator==(const Shadow&) const = default;
};

// An image repeated over the plane. `transform` maps the image's own points (not pixels) to the
// user space in force when it was set.
struct Pattern {
    ImageRef image;
    AffineTransform transform;
    Interpolation interpolation = Interpolation::Low;
};

// What an area is filled with.
using Paint = std::variant<Color, Pattern>;

// Everything that Context::save keeps and Context::restore brings back, except the clip itself,
// which the backend keeps.
struct GraphicsState {
    // Carries user space to the surface's points.
    AffineTransform transform;
    double lineWidth = 1;
    LineCap lineCap = LineCap::Butt;
    LineJoin lineJoin = LineJoin::Miter;
    Color strokeColor;
    Color fillColor;
    // Used instead of the fill colour while set; already carried into the surface's points.
    std::optional<Pattern> fillPattern;
    std::optional<Shadow> shadow;
    // Applied to the offset of a shadow when it is set.
    AffineTransform shadowTurn;
    double alpha = 1;
    BlendMode blendMode = BlendMode::Normal;
    Interpolation interpolation = Interpolation::Low;
    TextMode textMode = TextMode::Fill;
    bool antialias = true;
    // A box around the clip in the surface's points; nothing while there is no clip.
    std::optional<Rect> clipBounds;

    // Whether what is painted now has a shadow that shows.
    bool castsShadow() const {
        return shadow && shadow->color.alpha > 0 && blendMode == BlendMode::Normal;
    }
};

}  // namespace kalim::gfx
