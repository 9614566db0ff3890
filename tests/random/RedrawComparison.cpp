#include "tests/random/RedrawComparison.h"

#include <algorithm>
#include <cstdlib>

#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

namespace {

constexpr int mostLevels = 16;
// Rounding, which differs where a clip cuts what is resampled or smoothed.
constexpr int rounding = 1;
constexpr int onePixelIn = 500;

// Row by row, the window's own pixels in a copy.
gfx::BitmapRef pixelsOf(const ui::Window& window) {
    return window.surface()->makeImage()->pixels();
}

struct Differences {
    int count = 0;
    int largest = 0;
    // Of the last pixel that differs most.
    int x = 0;
    int y = 0;
};

Differences differencesOf(const gfx::Bitmap& shown, const gfx::Bitmap& redrawn) {
    Differences found;
    for (int y = 0; y < shown.height(); ++y) {
        if (std::equal(shown.row(y), shown.row(y) + shown.stride(), redrawn.row(y))) continue;
        for (int x = 0; x < shown.width(); ++x) {
            int levels = 0;
            for (int channel = 4 * x; channel < 4 * x + 4; ++channel)
                levels =
                    std::max(levels, std::abs(shown.row(y)[channel] - redrawn.row(y)[channel]));
            found.count += levels > rounding ? 1 : 0;
            if (levels <= rounding || levels < found.largest) continue;
            found = {found.count, levels, x, y};
        }
    }
    return found;
}

}  // namespace

std::optional<std::string> differenceOfRedraw(MDrawView& canvas) {
    ui::Window& window = *canvas.window();
    const gfx::BitmapRef shown = pixelsOf(window);
    canvas.invalidateLayers();
    window.display();
    const gfx::BitmapRef redrawn = pixelsOf(window);
    const auto difference = differenceOfPictures(*shown, *redrawn);
    if (!difference) return std::nullopt;
    return "once all is redrawn, " + *difference;
}

std::optional<std::string> differenceOfPictures(const gfx::Bitmap& before,
                                                const gfx::Bitmap& after) {
    if (before.width() != after.width() || before.height() != after.height()) {
        return "the picture has another size";
    }
    const Differences found = differencesOf(before, after);
    const bool isSame =
        found.largest <= mostLevels && found.count * onePixelIn <= before.width() * before.height();
    if (isSame) return std::nullopt;
    return std::to_string(found.count) + " pixels are others, by up to " +
           std::to_string(found.largest) + " levels at (" + std::to_string(found.x) + ", " +
           std::to_string(found.y) + ")";
}

}  // namespace kalim::test
