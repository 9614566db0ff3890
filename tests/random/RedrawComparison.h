#pragma once

#include <optional>
#include <string>

#include "kalimkit/canvas/MDrawView.h"

namespace kalim::test {

// Draws everything anew and tells how that differs from what the window shows.
std::optional<std::string> differenceOfRedraw(MDrawView& canvas);

// Nothing when no more than one pixel in 500 differs by more than a level in a channel, and
// none by more than 16. Edges cut by a clip may be smoothed a little differently.
std::optional<std::string> differenceOfPictures(const gfx::Bitmap& before,
                                                const gfx::Bitmap& after);

}  // namespace kalim::test
