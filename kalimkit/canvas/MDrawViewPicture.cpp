#include <utility>

#include "kalimkit/canvas/CanvasParts.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/SealedDocument.h"

// What the canvas takes in, a picture or a document, and what it gives back: itself as a document,
// and its steps as texts.

namespace kalim {

void MDrawView::setSnipImage(const gfx::ImageRef& image) {
    const auto parts = held();
    takePicture(image, {});
    parts->journal.restart();
}

// Settled by the view or the basis where nothing says how.
void MDrawView::takePicture(const gfx::ImageRef& image,
                            const std::optional<CanvasPicture::Settlement>& settlement) {
    CanvasParts& parts = *_parts;
    // Steps of what is going are of no use any more.
    const auto pause = parts.journal.paused();
    parts.typing.finish();
    parts.finger.deleteCreated();
    parts.freehand.drop();
    parts.selection.clear();
    resetView();
    if (settlement) {
        shown().picture.takeSettled(image, *settlement, room());
    } else {
        shown().picture.take(image, room(), _canvasBasis);
    }
    parts.document.forget();
    shown().content = bgImgRect();
    parts.painter.takeMosaic();
    placeCanvas();
    parts.history.clear();
    // Nothing of the old picture is kept.
    parts.painter.hiding().refresh();
    parts.screen.invalidate();
}

Document MDrawView::document() {
    return held()->document.document();
}

SealedDocument MDrawView::sealedDocument() {
    return held()->document.sealed();
}

std::optional<std::string> MDrawView::openDocument(const Document& document,
                                                   const gfx::ImageRef& picture) {
    const auto parts = held();
    if (auto problem = parts->document.problemOf(document, picture)) return problem;
    takePicture(picture, CanvasDocument::settlementOf(document));
    parts->document.takeHead(document);
    // Elsewhere what is saved or exported would leave tools out.
    if (document.canvas.forgiving) setForgiving(true);
    resetPictureCut(document.cut);
    parts->history.open(parts->document.toolsOf(document));
    parts->content.measure();
    parts->journal.restart();
    parts->screen.invalidate();
    return std::nullopt;
}

void MDrawView::setStepListener(std::weak_ptr<StepListener> listener) {
    _parts->journal.setListener(std::move(listener));
}

std::string MDrawView::stepsSetUp() const {
    return _parts->journal.setUp();
}

std::optional<std::string> MDrawView::replaySteps(std::span<const std::string> steps) {
    const auto parts = held();
    const auto problem =
        parts->journal.replay(steps, [this](const PictureCut& cut) { return setPictureCut(cut); });
    shown().glide = nullptr;
    parts->history.tell();
    parts->screen.invalidate();
    return problem;
}

}  // namespace kalim
