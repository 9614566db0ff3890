#include "cli/EditWindow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include "cli/OptionValues.h"
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

// What the bars of wide screens want at least, and what their user has made of it, "960x640".
constexpr gfx::Size deskSize{960, 640};
constexpr const char* sizeKey = "window.size";
// What showWindow has made of it, in pixels; a window has no other place for that.
constexpr const char* shownSizeName = "kalimkit.shownSize";

std::uintptr_t sizeNumber(int width, int height) {
    return static_cast<std::uintptr_t>(width) << 16U | static_cast<std::uintptr_t>(height);
}

SDL_Rect desktop() {
    SDL_Rect area{0, 0, 1280, 800};
    SDL_GetDisplayUsableBounds(0, &area);
    return area;
}

bool mayBeDesk(const EditOptions& options) {
    return options.layout != SeatLayout::Phone;
}

// Pixels of a window that shows the picture as large as it is, or as fits on the desktop.
gfx::Size windowSize(const codec::DecodeResult& photo, const EditOptions& options) {
    const SDL_Rect area = desktop();
    const double scale = options.scale;
    const double chrome = 2 * chromeHeight * scale;
    const gfx::Size room{area.w * largestShare, area.h * largestShare - chrome};
    gfx::Size size = usualSize * scale;
    if (!photo.bitmap.isEmpty()) {
        const gfx::PixelSize pixels = photo.bitmap.size();
        size = {static_cast<double>(pixels.width), static_cast<double>(pixels.height)};
        if (gfx::exchangesSides(photo.orientation)) std::swap(size.width, size.height);
    }
    const double fitting = std::min({1.0, room.width / size.width, room.height / size.height});
    const gfx::Size least{mayBeDesk(options) ? std::min(deskSize.width * scale, double(area.w))
                                             : leastSize.width * scale,
                          mayBeDesk(options) ? std::min(deskSize.height * scale, double(area.h))
                                             : leastSize.height * scale};
    return {std::max(std::round(size.width * fitting), least.width),
            std::max(std::round(size.height * fitting) + chrome, least.height)};
}

// Of the last window that was resized by hand, in pixels, as far as the desktop goes.
std::optional<gfx::Size> rememberedSize(SdlWindow& window, const EditOptions& options) {
    const auto text = mayBeDesk(options) ? window.environment().userSetting(sizeKey) : std::nullopt;
    gfx::Size size;
    if (!text || !readSize(*text, "960x640", size).empty()) return std::nullopt;
    const SDL_Rect area = desktop();
    return gfx::Size{std::min(size.width * options.scale, double(area.w)),
                     std::min(size.height * options.scale, double(area.h))};
}

}  // namespace

std::string titleOf(const std::string& photo) {
    return photo.substr(photo.find_last_of('/') + 1) + " - KalimKit";
}

SdlWindowHandle openWindow(const EditOptions& options) {
    const std::string title = options.photo == "-" ? "KalimKit" : titleOf(options.photo);
    const gfx::Size size = usualSize * std::max(options.scale, 1.0);
    return SdlWindowHandle(SDL_CreateWindow(
        title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, static_cast<int>(size.width),
        static_cast<int>(size.height), SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN));
}

void showWindow(SdlWindow& window, ::SDL_Window* sdl, const codec::DecodeResult& photo,
                const EditOptions& options) {
    const gfx::Size size = rememberedSize(window, options).value_or(windowSize(photo, options));
    const int width = static_cast<int>(size.width);
    const int height = static_cast<int>(size.height);
    SDL_SetWindowMinimumSize(sdl, static_cast<int>(leastSize.width * options.scale),
                             static_cast<int>(leastSize.height * options.scale));
    SDL_SetWindowSize(sdl, width, height);
    SDL_SetWindowData(sdl, shownSizeName, reinterpret_cast<void*>(sizeNumber(width, height)));
    SDL_SetWindowPosition(sdl, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_ShowWindow(sdl);
}

void rememberSize(SdlWindow& window, ::SDL_Window* sdl, const EditOptions& options) {
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(sdl, &width, &height);
    const auto shown = reinterpret_cast<std::uintptr_t>(SDL_GetWindowData(sdl, shownSizeName));
    constexpr std::uint32_t filled = SDL_WINDOW_MAXIMIZED | SDL_WINDOW_FULLSCREEN;
    const bool isFilled = (SDL_GetWindowFlags(sdl) & filled) != 0;
    if (!mayBeDesk(options) || isFilled || shown == 0 || shown == sizeNumber(width, height)) return;
    const auto points = [&](int pixels) {
        return std::to_string(std::lround(pixels / options.scale));
    };
    window.environment().setUserSetting(sizeKey, points(width) + "x" + points(height));
}

Video::Video() : _problem(SdlWindow::startVideo()) {}

}  // namespace kalim::cli
