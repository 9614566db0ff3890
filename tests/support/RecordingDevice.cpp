#include "tests/support/RecordingDevice.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "kalimkit/gfx/Utf8.h"

namespace kalim::test {

namespace {

constexpr int largestSide = 32767;

class BitmapRaster : public gfx::Raster {
public:
    explicit BitmapRaster(gfx::Bitmap bitmap)
        : _bitmap(std::make_shared<const gfx::Bitmap>(std::move(bitmap))) {}

    gfx::PixelSize size() const override { return _bitmap->size(); }
    gfx::BitmapRef pixels() const override { return _bitmap; }

private:
    gfx::BitmapRef _bitmap;
};

gfx::ImageRef imageOf(gfx::Bitmap bitmap, double scale, gfx::ImageOrientation orientation) {
    return std::make_shared<const gfx::Image>(
        std::make_shared<const BitmapRaster>(std::move(bitmap)), scale, orientation);
}

class RecordingSurface : public gfx::Surface {
public:
    RecordingSurface(gfx::PixelSize pixelSize, double scale, bool opaque)
        : _pixelSize(pixelSize), _scale(scale), _isOpaque(opaque) {}

    gfx::PixelSize pixelSize() const override { return _pixelSize; }
    double scale() const override { return _scale; }
    bool isOpaque() const override { return _isOpaque; }
    gfx::Context& context() override { return _context; }
    gfx::ImageRef makeImage() override {
        return imageOf(gfx::Bitmap(_pixelSize.width, _pixelSize.height), _scale,
                       gfx::ImageOrientation::Up);
    }

private:
    gfx::PixelSize _pixelSize;
    double _scale;
    bool _isOpaque;
    RecordingContext _context;
};

struct Grapheme {
    std::size_t offset;
    char32_t base;

    bool isWide() const { return base >= 0x2E80; }
    bool isSpace() const { return base == ' ' || base == '\t' || base == '\n'; }
    bool isWord() const {
        return base >= 0x80 || (base >= '0' && base <= '9') || (base >= 'A' && base <= 'Z') ||
               (base >= 'a' && base <= 'z');
    }
};

bool isCombining(char32_t value) {
    return (value >= 0x300 && value <= 0x36F) || value == 0x200D ||
           (value >= 0xFE00 && value <= 0xFE0F);
}

std::vector<Grapheme> graphemes(std::string_view text) {
    std::vector<Grapheme> result;
    for (std::size_t offset = 0; offset < text.size();) {
        const gfx::CodePoint next = gfx::decodeUtf8(text, offset);
        if (result.empty() || !isCombining(next.value)) result.push_back({offset, next.value});
        offset += next.byteCount;
    }
    return result;
}

bool divides(const Grapheme& before, const Grapheme& after, gfx::TextBoundary kind) {
    switch (kind) {
        case gfx::TextBoundary::Grapheme:
            return true;
        case gfx::TextBoundary::Word:
            return before.isWord() != after.isWord();
        case gfx::TextBoundary::Line:
            return !after.isSpace() && (before.isSpace() || before.isWide() || after.isWide());
    }
    return false;
}

}  // namespace

std::shared_ptr<gfx::Surface> RecordingDevice::makeSurface(gfx::Size size, double scale,
                                                           bool opaque) {
    const double width = std::ceil(size.width * scale - 1e-6);
    const double height = std::ceil(size.height * scale - 1e-6);
    if (!(width > 0 && height > 0 && width <= largestSide && height <= largestSide)) return {};
    auto surface = std::make_shared<RecordingSurface>(
        gfx::PixelSize{static_cast<int>(width), static_cast<int>(height)}, scale, opaque);
    _surfaces.push_back(surface);
    return surface;
}

gfx::ImageRef RecordingDevice::makeImage(gfx::Bitmap bitmap, double scale,
                                         gfx::ImageOrientation orientation) {
    return bitmap.isEmpty() ? nullptr : imageOf(std::move(bitmap), scale, orientation);
}

std::vector<double> RecordingDevice::advances(std::string_view text, const gfx::Font& font) {
    std::vector<double> result;
    for (const Grapheme& grapheme : graphemes(text)) {
        result.push_back(grapheme.isWide() ? font.size : font.size / 2);
    }
    return result;
}

gfx::LineMetrics RecordingDevice::lineMetrics(const gfx::Font& font) {
    return {font.size * 0.8, font.size * 0.2, font.size * 0.1};
}

std::vector<std::size_t> RecordingDevice::boundaries(std::string_view text,
                                                     gfx::TextBoundary kind) {
    const std::vector<Grapheme> all = graphemes(text);
    std::vector<std::size_t> result{0};
    for (std::size_t i = 1; i < all.size(); ++i) {
        if (divides(all[i - 1], all[i], kind)) result.push_back(all[i].offset);
    }
    if (!text.empty()) result.push_back(text.size());
    return result;
}

// A side is 0 for what goes along with letters from left to right, 1 for the other, 2 for what goes
// along with its neighbours.
gfx::TextDirections RecordingDevice::directions(std::string_view paragraph,
                                                gfx::BaseDirection base) {
    const std::vector<Grapheme> all = graphemes(paragraph);
    const auto isHebrew = [](const Grapheme& one) { return one.base >= 0x590 && one.base < 0x600; };
    const auto isNumber = [](const Grapheme& one) { return one.base >= '0' && one.base <= '9'; };
    const auto isLetter = [&](const Grapheme& one) { return one.isWord() && !isNumber(one); };
    const auto first = std::ranges::find_if(all, isLetter);
    const bool isTurned = base == gfx::BaseDirection::FirstLetter
                              ? first != all.end() && isHebrew(*first)
                              : base == gfx::BaseDirection::RightToLeft;
    gfx::TextDirections result;
    result.baseLevel = isTurned ? 1 : 0;
    if (!isTurned && std::ranges::none_of(all, isHebrew)) return result;
    std::vector<std::uint8_t> sides;
    std::uint8_t letter = result.baseLevel;
    for (const Grapheme& one : all) {
        if (isLetter(one)) letter = isHebrew(one) ? 1 : 0;
        sides.push_back(one.isWord() ? letter : 2);
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        std::uint8_t side = sides[i];
        if (side == 2) {
            const auto after = std::find_if(sides.begin() + static_cast<std::ptrdiff_t>(i),
                                            sides.end(), [](auto next) { return next != 2; });
            const std::uint8_t next = after == sides.end() ? result.baseLevel : *after;
            const std::uint8_t before = i == 0 ? result.baseLevel : sides[i - 1];
            side = before == next ? before : result.baseLevel;
            // Those that follow go where the neighbour before them goes.
            if (before == next) sides[i] = before;
        }
        const bool isLeft = side == 0 || isNumber(all[i]);
        const auto inner = static_cast<std::uint8_t>(side == 0 && !isTurned ? 0 : 2);
        result.graphemes.push_back({isLeft ? inner : std::uint8_t{1}, all[i].isSpace()});
    }
    return result;
}

std::vector<std::shared_ptr<gfx::Surface>> RecordingDevice::surfaces() const {
    std::vector<std::shared_ptr<gfx::Surface>> alive;
    for (const auto& weak : _surfaces) {
        if (auto surface = weak.lock()) alive.push_back(std::move(surface));
    }
    return alive;
}

RecordingContext& RecordingDevice::recording(gfx::Surface& surface) {
    return static_cast<RecordingContext&>(surface.context());
}

}  // namespace kalim::test
