#pragma once

#include <cstdint>
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
    // The side of a block, pixels of CanvasPicture::blockSource().
    static constexpr std::int32_t level = 20;

    // Asked: only when a patch needs them.
    enum class When { Soon, Asked };
    // Forgets the blocks of an old picture. A picture that still waits for its size has none.
    void take(const CanvasPicture& picture, When when = When::Soon);
    // What fills a patch where the picture is shown in this rectangle; black without a picture.
    gfx::Paint fill(const gfx::Rect& shownPicture) const;
    // The same blocks flowing into one another. That is a matter of looks: what they hide can be
    // guessed.
    gfx::Paint softFill(const gfx::Rect& shownPicture) const;

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
