#pragma once

#include "kalimkit/gfx/Rect.h"

namespace kalim::gfx {

// A box of whole device pixels; the right and bottom edges lie outside.
struct DeviceBox {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool operator==(const DeviceBox&) const = default;

    // The smallest box that holds a rectangle in pixels, limited to where Cairo can draw.
    static DeviceBox around(const Rect& rect);

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool isEmpty() const { return right <= left || bottom <= top; }
    DeviceBox grown(int by) const { return {left - by, top - by, right + by, bottom + by}; }
    DeviceBox intersection(const DeviceBox& other) const;
    DeviceBox unionWith(const DeviceBox& other) const;
    Rect rect() const;
};

}  // namespace kalim::gfx
