#pragma once

#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

class MDrawView;

// Takes over a picture that the page has numbered, with what it has told of its file; null for 0.
gfx::ImageRef takePagePicture(int picture);

// Tells the page how the picture with this number, which it is about to get, came from the one on
// the canvas.
void tellExported(int picture, const ExportedPicture& exported);
// The same of what a canvas has just handed out, at whatever scale.
void tellExported(int picture, const gfx::ImageRef& image, const MDrawView& canvas);

}  // namespace kalim
