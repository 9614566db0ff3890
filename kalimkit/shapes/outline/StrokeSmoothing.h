#pragma once

#include <array>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// Holds a piece of a smoothed stroke: one cubic.
struct KALIM_API SmoothedCurve {
    gfx::Point start;
    gfx::Point control1;
    gfx::Point control2;
    gfx::Point end;

    bool operator==(const SmoothedCurve&) const = default;
    // The box of all four points, which holds the curve.
    gfx::Rect box() const;
};

// Smooths a stroke as its points arrive. The first curve takes five points, every further one three
// more; each ends halfway between two points, so that it meets the next one in a common direction.
// The up to three points since the last curve belong to none: deliberately, drawing lags behind.
// Whoever wants to show them all the same asks for the tail.
class KALIM_API StrokeSmoothing {
public:
    // The next point starts a stroke.
    void restart() { _count = 0; }
    // The curve that the point completes.
    std::optional<SmoothedCurve> add(gfx::Point p);
    // From the end of the last curve to the last point; nothing where there is no such point. A
    // stroke that is at one place has a tail that a round pen shows as a dot.
    std::optional<SmoothedCurve> tail() const;

private:
    std::array<gfx::Point, 5> _buffer;
    // Counts the points in the buffer.
    std::size_t _count = 0;
};

}  // namespace kalim
