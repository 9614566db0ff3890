#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The editor's own pictures, which are part of the library: the names are those of the files in
// kalimkit/resources, without their suffix.

// The picture at the screen's scale, the same object each time while the environment stays; null
// for a name that there is none of. A pen that has a desk's icon only, "icon_desk_NAME", has that
// one as "icon_tool_NAME" and "icon_pen_NAME", too, in the size of those.
KALIM_API gfx::ImageRef imageNamedForFramework(const std::string& name);

// Draws the icon "icon_desk_NAME" in one colour, fitted into the middle of the rectangle; false for
// a name that there is none of. These are a family: 24 points a side, lines of 1.75 with round
// ends.
KALIM_API bool drawDeskIcon(gfx::Context& context, std::string_view name, const gfx::Rect& rect,
                            const gfx::Color& color);

// The name that a picture was found by, also of a tinted or faded copy of it; empty for any other.
KALIM_API std::string frameworkImageName(const gfx::ImageRef& image);

}  // namespace kalim
