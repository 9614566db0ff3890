#include "kalimkit/codec/JpegPlacement.h"

namespace kalim::codec {

JpegPlacement JpegPlacement::of(const SavingSource& source, gfx::PixelSize result,
                                gfx::ImageOrientation orientation, gfx::PixelSize stored,
                                gfx::PixelSize cell) {
    const bool liesOnSide = gfx::exchangesSides(orientation);
    const PixelMap upright = PixelMap::upright(orientation, withExchangedSides(stored, liesOnSide));
    const gfx::PixelSize unturned = withExchangedSides(result, source.quarterTurns % 2 != 0);
    const PixelMap placed = PixelMap::moved(source.x - source.part.x, source.y - source.part.y);
    JpegPlacement placement;
    placement.toResult = PixelMap::upright(orientation, result);
    placement.fromUpright = placed.then(PixelMap::turned(source.quarterTurns, unturned))
                                .then(placement.toResult.inverse());
    placement.fromSource = upright.then(placement.fromUpright);
    const PixelMap& map = placement.fromSource;
    placement.size = withExchangedSides(result, liesOnSide);
    placement.cell = withExchangedSides(cell, map.exchangesSides());
    const gfx::PixelRect everything{0, 0, placement.size.width, placement.size.height};
    const gfx::PixelRect whole{0, 0, stored.width, stored.height};
    const gfx::PixelRect part = intersection(upright.inverse().apply(source.part), whole);
    placement.covered = intersection(map.apply(part), everything);
    const gfx::PixelRect picture = map.apply(whole);
    placement.cutsRight = picture.x + picture.width > placement.size.width &&
                          placement.size.width % placement.cell.width != 0;
    placement.cutsBottom = picture.y + picture.height > placement.size.height &&
                           placement.size.height % placement.cell.height != 0;
    return placement;
}

bool JpegPlacement::isOnCells() const {
    return fromSource.dx % cell.width == 0 && fromSource.dy % cell.height == 0;
}

}  // namespace kalim::codec
