#pragma once

#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// A picture and copies of it that are half, a quarter, an eighth ... as wide and high, each made
// when it is first asked for. All copies together need at most a third of the picture's memory.
class KALIM_API PictureReductions {
public:
    // Any takes the time that a copy of a large picture needs; Cheap makes none that would be late
    // for the frame.
    enum class Making { Cheap, Any };

    // Forgets the copies of an old picture. An upright one, or null for none.
    void take(gfx::ImageRef picture);
    // The smallest copy that is at least this many pixels wide; the picture itself where none is.
    // Null without a picture, and where such a copy is neither there nor may be made.
    gfx::ImageRef atLeast(double width, Making making);
    // Gives the memory of the copies back.
    void release() { _copies.clear(); }

private:
    gfx::ImageRef _picture;
    // Halved once, twice and so on; null for those that have not been asked for.
    std::vector<gfx::ImageRef> _copies;
};

}  // namespace kalim
