#pragma once

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// What numbers, callouts and stamps look like: an area in the tool's colour with a rim and a
// shadow, which stand out from any photo, and signs in an ink that is legible on the colour.

// White, or almost black on colours that white would not be legible on.
KALIM_API gfx::Color inkOn(const gfx::Color& ground);
// Of an area without words on it: white, or where that would not show, grey.
KALIM_API gfx::Color rimOf(const gfx::Color& ground);

// Fills all of an outline's subpaths as one area and leaves the ink as stroke and fill colour. The
// colour's own alpha is left to the caller, see BadgeGroup. Canvas points.
KALIM_API void fillBadge(gfx::Context& context, const gfx::Path& outline, const gfx::Color& color,
                         double rim);

// Shows all that is drawn while it lives as translucent as the colour is, as one.
class KALIM_API BadgeGroup {
public:
    BadgeGroup(gfx::Context& context, const gfx::Color& color);
    ~BadgeGroup();
    BadgeGroup(const BadgeGroup&) = delete;
    BadgeGroup& operator=(const BadgeGroup&) = delete;

private:
    gfx::Context& _context;
    bool _isTranslucent;
};

}  // namespace kalim
