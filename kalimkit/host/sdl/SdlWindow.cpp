#include "kalimkit/host/sdl/SdlWindow.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/sdl/SdlCursors.h"
#include "kalimkit/host/sdl/SdlHands.h"

namespace kalim {

namespace {

SDL_Rect toSdl(const gfx::Rect& rect) {
    return {static_cast<int>(rect.minX()), static_cast<int>(rect.minY()),
            static_cast<int>(rect.size.width), static_cast<int>(rect.size.height)};
}

// Whether SDL, for want of a display, has taken a driver that shows nothing, and nobody asked for
// it.
bool isBlind() {
    const char* const wanted = SDL_GetHint(SDL_HINT_VIDEODRIVER);
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    return (!wanted || !*wanted) &&
           (driver == "offscreen" || driver == "dummy" || driver == "evdev");
}

// Where a ui::Window's pixels lie, and the screen's surface they go to.
struct Copy {
    const std::uint8_t* pixels;
    int stride;
    SDL_Surface* screen;

    void operator()(const SDL_Rect& rect) const {
        const std::uint8_t* const from =
            pixels + static_cast<std::ptrdiff_t>(rect.y) * stride + std::ptrdiff_t{rect.x} * 4;
        auto* const to = static_cast<std::uint8_t*>(screen->pixels) +
                         static_cast<std::ptrdiff_t>(rect.y) * screen->pitch +
                         std::ptrdiff_t{rect.x} * screen->format->BytesPerPixel;
        SDL_ConvertPixels(rect.w, rect.h, SDL_PIXELFORMAT_RGB888, from, stride,
                          screen->format->format, to, screen->pitch);
    }
};

}  // namespace

// ---- making

std::optional<std::string> SdlWindow::startVideo() {
    // Without a graphics card the accelerated path takes as long for a corner as for all.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    // Each finger and the mouse send one kind of event only.
    SDL_SetHint(SDL_HINT_TOUCH_MOUSE_EVENTS, "0");
    SDL_SetHint(SDL_HINT_MOUSE_TOUCH_EVENTS, "0");
    // The click that brings the window to the front draws as well.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    // To close the window is not yet to quit: the editor may ask.
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_IME_SHOW_UI, "1");
    // What is composed comes whole, however long it is.
    SDL_SetHint(SDL_HINT_IME_SUPPORT_EXTENDED_TEXT, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        return std::string("no window can be opened: ") + SDL_GetError();
    }
    if (isBlind()) {
        SDL_Quit();
        return "no window can be opened: there is no display";
    }
    // Video begins with it on.
    SDL_StopTextInput();
    return std::nullopt;
}

SdlWindow::SdlWindow(::SDL_Window* window, double scale)
    : SdlWindow(window, std::make_shared<SdlEnvironment>(scale)) {}

SdlWindow::SdlWindow(::SDL_Window* window, std::shared_ptr<SdlEnvironment> environment)
    : _sdl(window),
      _id(SDL_GetWindowID(window)),
      _environment(std::move(environment)),
      _seat(_environment, takeScreen()),
      _start(SDL_GetTicks64()) {
    _seat.setCaretHandler([this](const ui::TextView* focused, const gfx::Rect& caret) {
        placeCaret(focused != nullptr, caret);
    });
    _cursors = std::make_unique<SdlCursors>(_environment->device(), _environment->screen().scale);
    _seat.setCursorHandler([this](ui::Cursor cursor) { _cursors->show(cursor); });
    _pens = Pens::ofWindow(window);
}

SdlWindow::~SdlWindow() {
    _seat.setCursorHandler({});
    present(nullptr);
}

void SdlWindow::present(std::shared_ptr<TesselViewController> editor) {
    // The events of a window that was resized since it was made may still be under way.
    if (editor) takeSize();
    auto hands = editor ? std::make_shared<Hands>(*this) : nullptr;
    _seat.present(std::move(editor), hands);
    _hands = std::move(hands);
}

void SdlWindow::presentCanvas(std::shared_ptr<ui::ViewController> screen,
                              const std::shared_ptr<MDrawView>& canvas) {
    takeSize();
    _seat.presentCanvas(std::move(screen), canvas);
    _hands = nullptr;
}

// ---- the loop

void SdlWindow::run(std::optional<double> seconds) {
    const double end = seconds ? _environment->runLoop().now() + *seconds : INFINITY;
    _isStopped = false;
    _memory.run(*_environment, [this] { update(); });
    while (!_isStopped && _environment->runLoop().now() < end) {
        int wait = waitTime();
        if (seconds) {
            const double left = std::ceil((end - _environment->runLoop().now()) * 1000);
            wait = wait < 0 ? static_cast<int>(left) : std::min(wait, static_cast<int>(left));
        }
        SDL_Event event;
        bool isThere = SDL_WaitEventTimeout(&event, wait) == 1;
        while (isThere) {
            _memory.run(*_environment, [&] { handle(event); });
            isThere = !_isStopped && SDL_PollEvent(&event) == 1;
        }
        _memory.run(*_environment, [this] { update(); });
    }
}

int SdlWindow::waitTime() const {
    const double due = _environment->runLoop().nextDue();
    if (due < 0) return -1;
    const double now = static_cast<double>(SDL_GetTicks64() - _start) / 1000;
    // Rounded up: the clock of whole milliseconds would not have reached what is due.
    return static_cast<int>(std::clamp(std::ceil((due - now) * 1000), 0.0, 1e9));
}

void SdlWindow::update() {
    _environment->runLoop().advanceTo(static_cast<double>(SDL_GetTicks64() - _start) / 1000);
    bringToScreen(_seat.show());
}

void SdlWindow::bringToScreen(const std::vector<gfx::Rect>& rects) {
    if (rects.empty() || !window().surface()) return;
    const gfx::Surface& surface = *window().surface();
    SDL_Surface* const screen = SDL_GetWindowSurface(_sdl);
    const std::uint8_t* const pixels = gfx::CairoDevice::pixels(surface);
    if (!screen || !pixels) return;
    const gfx::PixelSize size = surface.pixelSize();
    const SDL_Rect common{0, 0, std::min(size.width, screen->w), std::min(size.height, screen->h)};
    const Copy copy{pixels, size.width * 4, screen};
    std::vector<SDL_Rect> shown;
    for (const gfx::Rect& rect : rects) {
        const SDL_Rect drawn = toSdl(rect);
        SDL_Rect visible;
        if (SDL_IntersectRect(&drawn, &common, &visible) == SDL_FALSE) continue;
        copy(visible);
        shown.push_back(visible);
    }
    SDL_UpdateWindowSurfaceRects(_sdl, shown.data(), static_cast<int>(shown.size()));
}

void SdlWindow::placeCaret(bool isTyping, const gfx::Rect& caret) const {
    if (isTyping != (SDL_IsTextInputActive() == SDL_TRUE)) {
        isTyping ? SDL_StartTextInput() : SDL_StopTextInput();
    }
    if (!isTyping) return;
    const double scale = _environment->screen().scale;
    const SDL_Rect place{static_cast<int>(caret.minX() * scale),
                         static_cast<int>(caret.minY() * scale),
                         static_cast<int>(std::ceil(caret.size.width * scale)),
                         static_cast<int>(std::ceil(caret.size.height * scale))};
    SDL_SetTextInputRect(&place);
}

// ---- size

void SdlWindow::setFullScreen(bool isFull) {
    SDL_SetWindowFullscreen(_sdl, isFull ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
}

bool SdlWindow::isFullScreen() const {
    return (SDL_GetWindowFlags(_sdl) & SDL_WINDOW_FULLSCREEN) != 0;
}

// Makes the SDL window the environment's screen; its size in points.
gfx::Size SdlWindow::takeScreen() {
    ui::Screen screen = _environment->screen();
    SDL_GetWindowSize(_sdl, &screen.nativeSize.width, &screen.nativeSize.height);
    _environment->setScreen(screen);
    return {screen.nativeSize.width / screen.scale, screen.nativeSize.height / screen.scale};
}

void SdlWindow::takeSize() {
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_sdl, &width, &height);
    const gfx::PixelSize before = _environment->screen().nativeSize;
    if (width < 1 || height < 1 || (before.width == width && before.height == height)) return;
    window().setSize(takeScreen());
}

}  // namespace kalim
