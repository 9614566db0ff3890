#include "kalimkit/host/sdl/SdlCursors.h"

#include <SDL.h>

#include <cmath>
#include <numbers>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Surface.h"

namespace kalim {

namespace {

SDL_SystemCursor systemCursor(ui::Cursor cursor) {
    switch (cursor) {
        case ui::Cursor::Hand:
        case ui::Cursor::Grab:
            return SDL_SYSTEM_CURSOR_HAND;
        case ui::Cursor::Cross:
            return SDL_SYSTEM_CURSOR_CROSSHAIR;
        case ui::Cursor::Text:
            return SDL_SYSTEM_CURSOR_IBEAM;
        case ui::Cursor::Move:
        case ui::Cursor::Grabbing:
            return SDL_SYSTEM_CURSOR_SIZEALL;
        case ui::Cursor::ResizeNS:
            return SDL_SYSTEM_CURSOR_SIZENS;
        case ui::Cursor::ResizeEW:
            return SDL_SYSTEM_CURSOR_SIZEWE;
        case ui::Cursor::ResizeNWSE:
            return SDL_SYSTEM_CURSOR_SIZENWSE;
        case ui::Cursor::ResizeNESW:
            return SDL_SYSTEM_CURSOR_SIZENESW;
        case ui::Cursor::NotAllowed:
            return SDL_SYSTEM_CURSOR_NO;
        case ui::Cursor::Arrow:
        case ui::Cursor::Rotate:
            break;
    }
    return SDL_SYSTEM_CURSOR_ARROW;
}

// Points.
constexpr double side = 24;

// Three quarters of a circle and the head of an arrow at their end.
gfx::Path rotationArrow() {
    constexpr gfx::Point middle{side / 2, side / 2};
    constexpr double radius = 6.5;
    constexpr double head = 4;
    gfx::Path path;
    path.addArc(middle, radius, 0, 1.5 * std::numbers::pi, true);
    path.moveTo({middle.x - head, middle.y - radius - head});
    path.lineTo({middle.x, middle.y - radius});
    path.lineTo({middle.x - head, middle.y - radius + head});
    return path;
}

}  // namespace

void SdlCursors::Deleter::operator()(::SDL_Cursor* cursor) const {
    SDL_FreeCursor(cursor);
}

SdlCursors::SdlCursors(gfx::Device& device, double scale) : _device(device), _scale(scale) {}

SdlCursors::~SdlCursors() {
    SDL_SetCursor(SDL_GetDefaultCursor());
}

// Black in a white rim, so that it is seen on everything.
SdlCursors::Handle SdlCursors::makeRotation() const {
    const auto surface = _device.makeSurface({side, side}, _scale, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    for (const bool isRim : {true, false}) {
        context.setStrokeColor(isRim ? gfx::Color{1, 1, 1, 1} : gfx::Color{0, 0, 0, 1});
        context.setLineWidth(isRim ? 4 : 1.75);
        context.addPath(rotationArrow());
        context.stroke();
    }
    const std::uint8_t* const pixels = gfx::CairoDevice::pixels(*surface);
    if (!pixels) return nullptr;
    const gfx::PixelSize size = surface->pixelSize();
    SDL_Surface* const picture = SDL_CreateRGBSurfaceWithFormatFrom(
        const_cast<std::uint8_t*>(pixels), size.width, size.height, 32, size.width * 4,
        SDL_PIXELFORMAT_ARGB8888);
    Handle cursor(picture ? SDL_CreateColorCursor(picture, size.width / 2, size.height / 2)
                          : nullptr);
    SDL_FreeSurface(picture);
    return cursor;
}

void SdlCursors::show(ui::Cursor cursor) {
    Handle& made = _cursors[static_cast<std::size_t>(cursor)];
    if (!made && cursor == ui::Cursor::Rotate) made = makeRotation();
    if (!made) made.reset(SDL_CreateSystemCursor(systemCursor(cursor)));
    SDL_SetCursor(made ? made.get() : SDL_GetDefaultCursor());
}

}  // namespace kalim
