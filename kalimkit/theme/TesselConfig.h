#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// What a dot of a picker stands for. Only the field that the type names counts, and the border
// with the colour.
class KALIM_API TesselConfig {
public:
    static std::shared_ptr<TesselConfig> create() { return std::make_shared<TesselConfig>(); }

    // The type is 0 colour, 1 size, 2 pen, 3 shape.
    unsigned type() const { return _type; }
    void setType(unsigned type) { _type = type; }
    const gfx::ColorRef& color() const { return _color; }
    void setColor(gfx::ColorRef color) { _color = std::move(color); }
    // The size goes from 0 to 4, thin to thick.
    unsigned size() const { return _size; }
    void setSize(unsigned size) { _size = size; }
    // Of a dot of sizes that stands for a way to hide instead, its number (HidingStyle); nothing
    // for a width.
    std::optional<std::uint64_t> hidingStyle() const { return _hidingStyle; }
    void setHidingStyle(std::optional<std::uint64_t> drawType) { _hidingStyle = drawType; }
    // The pen is 0 mosaic, 1 text, 2 freehand, 3 rectangle, 4 line, 5 circle, 6 arrow, 8 crop.
    unsigned pen() const { return _pen; }
    void setPen(unsigned pen) { _pen = pen; }
    // The shape is 0 rectangle, 1 circle, 2 line.
    unsigned shape() const { return _shape; }
    void setShape(unsigned shape) { _shape = shape; }
    bool isShowBorder() const { return _isShowBorder; }
    void setIsShowBorder(bool shows) { _isShowBorder = shows; }

private:
    unsigned _type = 0;
    gfx::ColorRef _color;
    unsigned _size = 0;
    std::optional<std::uint64_t> _hidingStyle;
    unsigned _pen = 0;
    unsigned _shape = 0;
    bool _isShowBorder = false;
};

}  // namespace kalim
