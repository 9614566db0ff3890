#include "kalimkit/canvas/CanvasMosaic.h"

#include <utility>
#include <variant>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Seconds from a new picture until its blocks are computed.
constexpr double mosaicDelay = 0.001;

}  // namespace

void CanvasMosaic::take(const CanvasPicture& picture, When when) {
    _work = nullptr;
    if (!picture.source() || !picture.isSettled()) return;
    _work = std::make_shared<Work>(Work{picture, {}});
    if (when == When::Asked) return;
    ui::Environment::current().runLoop().after(mosaicDelay,
                                               [weakWork = std::weak_ptr<Work>(_work)] {
                                                   if (const auto work = weakWork.lock())
                                                       work->blocks();
                                               });
}

const MosaicBlocks& CanvasMosaic::Work::blocks() {
    if (!computed) {
        const gfx::ImageRef source = std::exchange(picture, {}).blockSource();
        computed.emplace(ui::Environment::current().device(), *source->pixels(), level);
    }
    return *computed;
}

gfx::Paint CanvasMosaic::fill(const gfx::Rect& shownPicture) const {
    if (!_work || _work->blocks().isEmpty()) return gfx::Color{0, 0, 0, 1};
    return _work->blocks().patternOver(shownPicture);
}

gfx::Paint CanvasMosaic::softFill(const gfx::Rect& shownPicture) const {
    gfx::Paint paint = fill(shownPicture);
    if (auto* const pattern = std::get_if<gfx::Pattern>(&paint))
        pattern->interpolation = gfx::Interpolation::High;
    return paint;
}

}  // namespace kalim
