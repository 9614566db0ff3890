#pragma once

#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/TouchContact.h"

struct SDL_Window;

namespace kalim {

// What a system knows of pens beyond the mouse that SDL makes of them.
class KALIM_API Pens {
public:
    virtual ~Pens() = default;

    // How the pen touches that moves the pointer now; nothing where a mouse does.
    virtual std::optional<ui::TouchContact> contact() = 0;

    // Those of the X server that shows the window, by XInput 2. Null under other systems, and
    // where the server or its libraries have none of it.
    static std::unique_ptr<Pens> ofWindow(::SDL_Window* window);
};

// One of the values that a tablet tells, and what it goes from and to.
struct PenAxis {
    int number = 0;
    double least = 0;
    double most = 0;
};

// What of them a pen is known by. A device is a pen that has a pressure.
struct PenAxes {
    std::optional<PenAxis> pressure;
    std::optional<PenAxis> tiltX;
    std::optional<PenAxis> tiltY;
};

// The contact that these values, by the numbers of their axes, make of the one before: what is not
// among them is as it was.
KALIM_API ui::TouchContact penContact(const PenAxes& axes,
                                      std::span<const std::pair<int, double>> values,
                                      ui::TouchContact before);

}  // namespace kalim
