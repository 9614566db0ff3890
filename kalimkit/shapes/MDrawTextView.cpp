#include "kalimkit/shapes/MDrawTextView.h"

namespace kalim {

namespace {

constexpr double barWidth = 2.0;

}  // namespace

std::shared_ptr<MDrawTextView> MDrawTextView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : MDrawTextView {};
    const std::shared_ptr<MDrawTextView> view = std::make_shared<Constructible>();
    static_cast<MDrawTextView&>(*view).init(frame);
    return view;
}

void MDrawTextView::init(const gfx::Rect& frame) {
    TextView::init(frame);
    setTextColor(nullptr);
}

void MDrawTextView::drawRect(gfx::Context& context, const gfx::Rect& dirty) {
    TextView::drawRect(context, dirty);
    drawBounds(context);
}

void MDrawTextView::drawBounds(gfx::Context& context) const {
    if (!_drawLineColor) return;
    gfx::GraphicsStateGuard guard(context);
    context.setLineWidth(barWidth);
    context.setStrokeColor(*_drawLineColor);
    for (const double x : {bounds().minX(), bounds().maxX()}) {
        context.beginPath();
        context.moveTo({x, bounds().minY()});
        context.lineTo({x, bounds().maxY()});
        context.stroke();
    }
}

}  // namespace kalim
