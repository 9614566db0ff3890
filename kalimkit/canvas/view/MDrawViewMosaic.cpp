#include <memory>
#include <utility>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/ToolClasses.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

// Of the blocks, raster pixels of the fitted picture.
constexpr std::int32_t mosaicLevel = 20;
// Seconds from a new picture until its blocks are computed.
constexpr double mosaicDelay = 0.001;

}  // namespace

// The blocks of an old picture are worth nothing; those of the new one follow soon.
void MDrawView::forgetMosaic() {
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    loop.cancel(std::exchange(_mosaicWork, 0));
    _mosaicBlocks.reset();
    if (!_picture.source() || !_picture.isSettled()) return;
    const std::weak_ptr<MDrawView> weakSelf = self();
    _mosaicWork = loop.after(mosaicDelay, [weakSelf] {
        const auto view = weakSelf.lock();
        if (!view) return;
        view->_mosaicWork = 0;
        view->mosaicBlocks();
    });
}

const MosaicBlocks& MDrawView::mosaicBlocks() {
    if (!_mosaicBlocks && _picture.first()) {
        _mosaicBlocks.emplace(ui::Environment::current().device(), *_picture.first()->pixels(),
                              mosaicLevel);
    }
    static const MosaicBlocks none;
    return _mosaicBlocks ? *_mosaicBlocks : none;
}

gfx::Paint MDrawView::mosiacImgColor(const gfx::Rect& shownPicture) {
    const MosaicBlocks& blocks = mosaicBlocks();
    if (blocks.isEmpty()) return gfx::Color{0, 0, 0, 1};
    return blocks.patternOver(shownPicture);
}

void MDrawView::drawMosiacTools(gfx::Context& context, const gfx::Rect& shownPicture,
                                const std::function<bool(const MDrawTool&)>& isWanted) {
    for (const ToolRef& tool : *_tools) {
        if (!isMosaic(*tool) || !isWanted(*tool)) continue;
        static_cast<MDrawMosiac&>(*tool).drawMosiacContentWithFilledColorInRect(
            context, mosiacImgColor(shownPicture), shownPicture);
    }
}

}  // namespace kalim
