#include "kalimkit/codec/Saving.h"
#include "kalimkit/host/browser/PageGrid.h"

namespace kalim {

gfx::PixelGrid pageGrid(codec::ByteSpan file) {
    return codec::pixelGrid(file);
}

}  // namespace kalim
