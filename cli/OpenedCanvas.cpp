#include "cli/OpenedCanvas.h"

#include <memory>
#include <utility>

#include "kalimkit/host/headless/HeadlessEnvironment.h"

namespace kalim::cli {

namespace {

// Without a picture the screen's scale is that of what is exported.
std::shared_ptr<ui::Environment> environmentFor(gfx::Device& device, const Document& document,
                                                bool isOnePixelAPoint) {
    const bool isOwn = !isOnePixelAPoint && document.canvas.basis == 0;
    auto environment =
        std::make_shared<HeadlessEnvironment>(device, isOwn ? document.canvas.scale : 1);
    environment->setAreaBudget(std::nullopt);
    return environment;
}

gfx::Size viewSize(const DocumentCanvas& canvas) {
    const bool isSettled = canvas.basis == 0 && !canvas.bounds.isEmpty();
    const gfx::Size size = isSettled ? canvas.bounds.size : canvas.pictureRect.size;
    return size.isEmpty() ? gfx::Size{1, 1} : size;
}

}  // namespace

OpenedCanvas::OpenedCanvas(gfx::Device& device, const Document& document, bool isOnePixelAPoint)
    : _device(device),
      _scope(environmentFor(device, document, isOnePixelAPoint)),
      _canvas(MDrawView::initWithFrame({{}, viewSize(document.canvas)})) {}

std::optional<std::string> OpenedCanvas::open(OpenedFile& opened) {
    const gfx::ImageRef picture = _origins.make(_device, opened);
    if (opened.document->picture && !picture) return "there is no room for a picture of this size";
    return _canvas->openDocument(*opened.document, picture);
}

}  // namespace kalim::cli
