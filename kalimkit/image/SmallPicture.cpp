#include "kalimkit/image/SmallPicture.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>

#include "kalimkit/gfx/Surface.h"
#include "kalimkit/json/Base64.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::size_t bytesPerPixel = 4;

std::string bytesOf(const gfx::Bitmap& bitmap) {
    std::string bytes;
    bytes.reserve(bitmap.byteCount());
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x) {
            const gfx::Color color = bitmap.colorAt(x, y);
            for (const double component : {color.red, color.green, color.blue, color.alpha})
                bytes.push_back(static_cast<char>(std::lround(component * 255)));
        }
    }
    return bytes;
}

gfx::Bitmap bitmapOf(const std::string& bytes, gfx::PixelSize size) {
    gfx::Bitmap bitmap(size.width, size.height);
    std::size_t place = 0;
    const auto next = [&] { return static_cast<std::uint8_t>(bytes[place++]) / 255.0; };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const double red = next();
            const double green = next();
            const double blue = next();
            bitmap.setColorAt(x, y, {red, green, blue, next()});
        }
    }
    return bitmap;
}

// Reads a side's length and what ends it.
std::optional<int> takeSide(std::string_view& text, char end) {
    int side = 0;
    const char* const last = text.data() + text.size();
    const auto [after, error] = std::from_chars(text.data(), last, side);
    if (error != std::errc() || after == last || *after != end) return std::nullopt;
    if (side < 1 || side > largestSmallPicture) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(after - text.data()) + 1);
    return side;
}

}  // namespace

std::string smallPictureText(const gfx::ImageRef& image) {
    if (!image || image->pixelSize().isEmpty()) return {};
    gfx::Size size(image->pixelSize().width, image->pixelSize().height);
    if (gfx::exchangesSides(image->orientation())) std::swap(size.width, size.height);
    const double shrink = std::min(1.0, largestSmallPicture / std::max(size.width, size.height));
    const gfx::Size small{std::max(std::round(size.width * shrink), 1.0),
                          std::max(std::round(size.height * shrink), 1.0)};
    const auto surface = ui::Environment::current().device().makeSurface(small, 1, false);
    if (!surface) return {};
    surface->context().setInterpolation(gfx::Interpolation::High);
    surface->context().drawImage(*image, gfx::Rect({}, small));
    const gfx::BitmapRef pixels = surface->makeImage()->pixels();
    return std::to_string(pixels->width()) + "x" + std::to_string(pixels->height()) + ":" +
           base64(bytesOf(*pixels));
}

std::optional<gfx::Bitmap> readSmallPicture(std::string_view text) {
    const std::optional<int> width = takeSide(text, 'x');
    const std::optional<int> height = width ? takeSide(text, ':') : std::nullopt;
    if (!height) return std::nullopt;
    const std::optional<std::string> bytes = fromBase64(text);
    const gfx::PixelSize size{*width, *height};
    const std::size_t needed =
        bytesPerPixel * static_cast<std::size_t>(*width) * static_cast<std::size_t>(*height);
    if (!bytes || bytes->size() != needed) return std::nullopt;
    return bitmapOf(*bytes, size);
}

}  // namespace kalim
