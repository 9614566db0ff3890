#include "kalimkit/backend/html/HtmlDevice.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "kalimkit/backend/html/HtmlFont.h"
#include "kalimkit/backend/html/HtmlImports.h"
#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/HtmlSurface.h"
#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

std::shared_ptr<Surface> HtmlDevice::makeSurface(Size size, double scale, bool opaque) {
    return HtmlSurface::make(size, scale, opaque);
}

ImageRef HtmlDevice::makeImage(Bitmap bitmap, double scale, ImageOrientation orientation) {
    if (bitmap.isEmpty()) return nullptr;
    auto raster =
        HtmlRaster::adopt(page::pictureMake(bitmap.data(), bitmap.width(), bitmap.height()));
    if (!raster) return nullptr;
    return std::make_shared<const Image>(std::move(raster), scale, orientation);
}

std::vector<double> HtmlDevice::advances(std::string_view text, const Font& font) {
    std::vector<double> result(text.size() + 1);
    const HtmlFont given(font);
    const int count = page::advances(text.data(), static_cast<int>(text.size()), given.family,
                                     given.familyLength, given.size, given.style, result.data());
    result.resize(static_cast<std::size_t>(count));
    return result;
}

LineMetrics HtmlDevice::lineMetrics(const Font& font) {
    double lengths[3] = {};
    const HtmlFont given(font);
    page::lineMetrics(given.family, given.familyLength, given.size, given.style, lengths);
    return {lengths[0], lengths[1], lengths[2]};
}

std::vector<std::size_t> HtmlDevice::boundaries(std::string_view text, TextBoundary kind) {
    std::vector<std::uint32_t> units(text.size() + 1);
    const int count = page::boundaries(text.data(), static_cast<int>(text.size()),
                                       static_cast<int>(kind), units.data());
    std::vector<std::size_t> result;
    std::size_t offset = 0;
    std::size_t reached = 0;
    for (int i = 0; i < count; ++i) {
        while (reached < units[static_cast<std::size_t>(i)] && offset < text.size()) {
            const CodePoint point = decodeUtf8(text, offset);
            reached += point.value > 0xFFFF ? 2 : 1;
            offset += point.byteCount;
        }
        result.push_back(offset);
    }
    return result;
}

TextDirections HtmlDevice::directions(std::string_view paragraph, BaseDirection base) {
    const bool isAscii =
        std::ranges::all_of(paragraph, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (isAscii && base != BaseDirection::RightToLeft) return {};
    std::vector<std::uint8_t> numbers(paragraph.size() + 1);
    const int count = page::directions(paragraph.data(), static_cast<int>(paragraph.size()),
                                       static_cast<int>(base), numbers.data());
    TextDirections result{numbers.front(), {}};
    for (int i = 1; i < count; ++i) {
        const std::uint8_t number = numbers[static_cast<std::size_t>(i)];
        result.graphemes.push_back({static_cast<std::uint8_t>(number & 0x7F), number >= 0x80});
    }
    return result;
}

}  // namespace kalim::gfx
