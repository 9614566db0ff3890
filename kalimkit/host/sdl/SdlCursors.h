#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/ui/view/Cursor.h"

struct SDL_Cursor;

namespace kalim {

// What the pointer looks like over windows: the system's cursors, and one of our own where it has
// none. They are made when they are first wanted.
class SdlCursors {
public:
    // Draws with the device, which outlives it; pixels per point.
    SdlCursors(gfx::Device& device, double scale);
    ~SdlCursors();
    SdlCursors(const SdlCursors&) = delete;
    SdlCursors& operator=(const SdlCursors&) = delete;

    void show(ui::Cursor cursor);

private:
    struct Deleter {
        void operator()(::SDL_Cursor* cursor) const;
    };
    using Handle = std::unique_ptr<::SDL_Cursor, Deleter>;
    static constexpr std::size_t count = static_cast<std::size_t>(ui::Cursor::NotAllowed) + 1;

    Handle makeRotation() const;

    gfx::Device& _device;
    double _scale;
    std::array<Handle, count> _cursors;
};

}  // namespace kalim
