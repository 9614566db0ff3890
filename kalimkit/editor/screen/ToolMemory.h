#pragma once

#include <cstdint>
#include <optional>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/tool/ToolProperty.h"

namespace kalim {

class MDrawView;

// How the user last drew with each tool, and with which, in the user's settings: "tool.last" is a
// pen's identifier (see penIdentifier()), "tool.arrow.color" a colour as "#RRGGBBAA",
// "tool.arrow.width" points, "tool.arrow.drawType" the number of a style, and "tool.arrow.heads",
// say, a property. What makes no sense is passed over.
class ToolMemory {
public:
    struct Look {
        gfx::ColorRef color;
        std::optional<double> lineWidth;
        std::optional<std::uint64_t> drawType;
        ToolPropertyValues properties;
    };

    // Off at first: nothing is kept, and nothing is known.
    bool isOn() const { return _isOn; }
    void setOn(bool isOn) { _isOn = isOn; }

    // What the canvas draws with now, by the number of the pen.
    void store(unsigned pen, const MDrawView& canvas) const;
    void storeLast(unsigned pen) const;
    // Another pen is taken after this one: what was chosen for all pens outlives one that begins
    // with a colour of its own.
    void leave(unsigned pen, const MDrawView& canvas);
    // Of a pen that was never used, the colour that it begins with.
    Look lookOf(unsigned pen, const MDrawView& canvas) const;
    std::optional<unsigned> lastPen() const;

private:
    bool _isOn = false;
    // Of the last pen without one of its own; null before.
    gfx::ColorRef _commonColor;
};

}  // namespace kalim
