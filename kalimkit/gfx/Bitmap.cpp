#include "kalimkit/gfx/Bitmap.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace kalim::gfx {

namespace {

std::uint8_t toByte(double component) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
}

}  // namespace

Bitmap::Bitmap(const Bitmap& other) : Bitmap(unwritten(other.width(), other.height())) {
    std::copy_n(other.data(), byteCount(), data());
}

Bitmap::Bitmap(Bitmap&& other) noexcept
    : _size(std::exchange(other._size, {})), _bytes(std::move(other._bytes)) {}

Bitmap& Bitmap::operator=(Bitmap other) noexcept {
    std::swap(_size, other._size);
    std::swap(_bytes, other._bytes);
    return *this;
}

Bitmap::Bitmap(int width, int height) : Bitmap(unwritten(width, height)) {
    std::fill_n(data(), byteCount(), std::uint8_t{0});
}

Bitmap Bitmap::unwritten(int width, int height) {
    if (width <= 0 || height <= 0) return {};
    const std::size_t count =
        std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return adopted(width, height, std::make_unique_for_overwrite<std::uint8_t[]>(count));
}

Bitmap Bitmap::adopted(int width, int height, std::shared_ptr<std::uint8_t[]> bytes) {
    Bitmap bitmap;
    if (width <= 0 || height <= 0) return bitmap;
    bitmap._size = {width, height};
    bitmap._bytes = std::move(bytes);
    return bitmap;
}

bool Bitmap::operator==(const Bitmap& other) const {
    return _size == other._size && std::equal(data(), data() + byteCount(), other.data());
}

Color Bitmap::colorAt(int x, int y) const {
    assert(x >= 0 && x < width() && y >= 0 && y < height());
    const std::uint8_t* const pixel = row(y) + 4 * static_cast<std::size_t>(x);
    const double alpha = pixel[3];
    if (alpha == 0) return {0, 0, 0, 0};
    return {std::min(pixel[2] / alpha, 1.0), std::min(pixel[1] / alpha, 1.0),
            std::min(pixel[0] / alpha, 1.0), alpha / 255};
}

void Bitmap::setColorAt(int x, int y, const Color& color) {
    assert(x >= 0 && x < width() && y >= 0 && y < height());
    std::uint8_t* const pixel = row(y) + 4 * static_cast<std::size_t>(x);
    const double alpha = std::clamp(color.alpha, 0.0, 1.0);
    pixel[0] = toByte(std::clamp(color.blue, 0.0, 1.0) * alpha);
    pixel[1] = toByte(std::clamp(color.green, 0.0, 1.0) * alpha);
    pixel[2] = toByte(std::clamp(color.red, 0.0, 1.0) * alpha);
    pixel[3] = toByte(alpha);
}

}  // namespace kalim::gfx
