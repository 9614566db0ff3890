#include "kalimkit/codec/StoredResult.h"

namespace kalim::codec {

StoredResult::StoredResult(const gfx::Bitmap& result, const PixelMap& toResult)
    : _first(result.row(toResult.pixelY(0, 0)) + std::ptrdiff_t{4} * toResult.pixelX(0, 0)) {
    const auto stride = static_cast<std::ptrdiff_t>(result.stride());
    _across = 4 * toResult.xx + stride * toResult.yx;
    _down = 4 * toResult.xy + stride * toResult.yy;
}

}  // namespace kalim::codec
