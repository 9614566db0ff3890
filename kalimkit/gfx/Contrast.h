#pragma once

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

// The relative luminance of the Web Content Accessibility Guidelines (WCAG 2.2), from 0 for black
// to 1 for white; a colour's opacity does not count.
KALIM_API double luminance(const Color& color);
// White where it stands out from the colour by the contrast ratio that these guidelines ask of
// large text, 3 to 1; else black, which does so by far.
KALIM_API Color contrasting(const Color& color);

}  // namespace kalim::gfx
