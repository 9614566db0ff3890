#include "cli/EditWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/Size.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim::cli {

namespace {

// The window's sizes are points.
constexpr gfx::Size leastSize{360, 520};
constexpr gfx::Size usualSize{480, 720};
// Above and below the picture, where the tool bar and the pen button are.
constexpr double chromeHeight = 90;
// The window takes at most this part of the desktop.
constexpr double largestShare = 0.85;

// Pixels of a window that shows the picture as large as it is, or as fits on the desktop.
gfx::Size windowSize(const codec::DecodeResult& photo, double scale) {
    SDL_Rect desktop{0, 0, 1280, 800};
    SDL_GetDisplayUsableBounds(0, &desktop);
    const double chrome = 2 * chromeHeight * scale;
    const gfx::Size room{desktop.w * largestShare, desktop.h * largestShare - chrome};
    gfx::Size size = usualSize * scale;
    if (!photo.bitmap.isEmpty()) {
        const gfx::PixelSize pixels = photo.bitmap.size();
        size = {static_cast<double>(pixels.width), static_cast<double>(pixels.height)};
        if (gfx::exchangesSides(photo.orientation)) std::swap(size.width, size.height);
    }
    const double fitting = std::min({1.0, room.width / size.width, room.height / size.height});
    return {std::max(std::round(size.width * fitting), leastSize.width * scale),
            std::max(std::round(size.height * fitting) + chrome, leastSize.height * scale)};
}

}  // namespace

std::string titleOf(const std::string& photo) {
    return photo.substr(photo.find_last_of('/') + 1) + " - KalimKit";
}

SdlWindowHandle openWindow(const EditOptions& options) {
    const std::string title = options.photo == "-" ? "KalimKit" : titleOf(options.photo);
    const gfx::Size size = usualSize * options.scale;
    return SdlWindowHandle(SDL_CreateWindow(
        title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, static_cast<int>(size.width),
        static_cast<int>(size.height), SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN));
}

void showWindow(::SDL_Window* window, const codec::DecodeResult& photo, double scale) {
    const gfx::Size size = windowSize(photo, scale);
    SDL_SetWindowMinimumSize(window, static_cast<int>(leastSize.width * scale),
                             static_cast<int>(leastSize.height * scale));
    SDL_SetWindowSize(window, static_cast<int>(size.width), static_cast<int>(size.height));
    SDL_SetWindowPosition(window, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_ShowWindow(window);
}

Video::Video() : _problem(SdlWindow::startVideo()) {}

}  // namespace kalim::cli
