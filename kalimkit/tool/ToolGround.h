#pragma once

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The ground of a canvas, for tools that show a place of it once more: the picture with its
// finished patches, without anything that a crop has cut off. Drawings and the shade are no part
// of it.
class ToolGround {
public:
    virtual ~ToolGround() = default;
    // Draws what lies in a canvas rectangle; the context is in canvas coordinates, at any scale. As
    // sharp as the picture is, and nothing that a patch hides is mixed into what is seen.
    virtual void draw(gfx::Context& context, const gfx::Rect& part) = 0;
};

}  // namespace kalim
