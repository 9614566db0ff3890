#pragma once

#include <map>
#include <optional>
#include <string>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/host/seat/EditorSeat.h"

namespace kalim {

// How the host of a scenario creates the editor.
struct EditorSetup {
    // The zoom-in from a thumbnail: where that lies in the window, points, and how large the
    // picture is shown there at first.
    struct Entrance {
        gfx::Rect fromRect;
        double fromScale = 0;
    };

    // Null stands for none.
    gfx::ImageRef picture;
    // The environment is a phone whose screen has that many pixels from top to bottom; nothing for
    // a screen that is no phone's and just what the window covers.
    std::optional<int> nativeHeight;
    std::optional<Entrance> entrance;
    std::map<std::string, bool> userDefaults;
    SeatLayout layout = SeatLayout::Phone;
};

}  // namespace kalim
