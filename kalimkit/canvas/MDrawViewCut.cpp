#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/PictureCutStep.h"

// The canvas's part of the picture: what of it is shown, as a step of undo.

namespace kalim {

bool MDrawView::setPictureCutSeenAt(const PictureCut& cut, const gfx::Rect& seenAt) {
    if (!sourceImage() || !isCutOf(cut, sourceImage()->pixelSize())) return false;
    const auto parts = held();
    parts->history.endUnderWay();
    const PictureCut before = pictureCut();
    const gfx::PixelSize pixels = sourceImage()->pixelSize();
    const bool isSame =
        partOf(cut, pixels) == partOf(before, pixels) && cut.quarterTurns == before.quarterTurns;
    if (isSame) return false;
    fitIntoView();
    showCut(cut, seen());
    if (!seenAt.isEmpty()) glideFrom({placingContent(seenAt), ctxRect()});
    parts->tools.record(
        PictureCutStep::make(before, cut, [weakSelf = weak_from_this()](const PictureCut& stepped) {
            const auto canvas = std::static_pointer_cast<MDrawView>(weakSelf.lock());
            if (canvas) canvas->showCut(stepped, canvas->seen());
        }));
    return true;
}

bool MDrawView::resetPictureCut(const PictureCut& cut) {
    if (!sourceImage() || !isCutOf(cut, sourceImage()->pixelSize())) return false;
    const auto parts = held();
    parts->history.endUnderWay();
    showCut(cut, std::nullopt);
    parts->journal.takeCut();
    return true;
}

// How the canvas would have to be shown for its content to be seen there, view points.
gfx::AffineTransform MDrawView::placingContent(const gfx::Rect& seenAt) const {
    const gfx::Rect shown = mViewTransform().apply(ctxRect());
    const double scale = seenAt.size.width / shown.size.width;
    return mViewTransform()
        .concat(gfx::AffineTransform::translation(gfx::Point{} - shown.center()))
        .concat(gfx::AffineTransform::scaling(scale, scale))
        .concat(gfx::AffineTransform::translation(seenAt.center()));
}

void MDrawView::showCut(const PictureCut& cut, const std::optional<Seen>& from) {
    takeCut(cut);
    _parts->content.measure();
    fitResized();
    if (from) glideFrom(*from);
    _parts->screen.invalidate();
}

}  // namespace kalim
