#pragma once

#include <memory>
#include <optional>

#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/image/MosaicBlocks.h"

namespace kalim {

// The blocks that mosaic patches show of the picture. They are computed a millisecond after the
// picture came, or when the first patch needs them.
class KALIM_API CanvasMosaic {
public:
    // Forgets the blocks of an old picture. A picture that still waits for its size has none.
    void take(const CanvasPicture& picture);
    // What fills a patch where the picture is shown in this rectangle; black without a picture.
    gfx::Paint fill(const gfx::Rect& shownPicture) const;

private:
    struct Work {
        const MosaicBlocks& blocks();

        // Let go once the blocks are there.
        CanvasPicture picture;
        std::optional<MosaicBlocks> computed;
    };

    // There is none without a picture.
    std::shared_ptr<Work> _work;
};

}  // namespace kalim
