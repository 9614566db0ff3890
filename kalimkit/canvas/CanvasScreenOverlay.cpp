#include <utility>

#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"

// What lies over everything that is drawn while a finger drags: never in what leaves the canvas.

namespace kalim {

namespace {

constexpr gfx::Color guideColor{1, 0.18, 0.45, 1};
constexpr gfx::Color marqueeEdge{0.14, 0.66, 0.91, 1};
constexpr gfx::Color marqueeGround{0.14, 0.66, 0.91, 0.12};
constexpr gfx::Color litColor{0.14, 0.66, 0.91, 0.45};
// Points of the screen.
constexpr double litRadius = 13;

}  // namespace

double CanvasScreen::hairline() const {
    const double scale = _canvas.shown.zoom.shownScale();
    return scale > 0 ? 1 / scale : 1;
}

// What goes and what comes is drawn anew.
void CanvasScreen::markOverlay() {
    const double reach = -2 * hairline();
    for (const SnapGuide& guide : _guides)
        mark(gfx::Rect::spanning(guide.from, guide.to).inset(reach, reach));
    if (_marquee) mark(_marquee->inset(reach, reach));
    if (_litHandle) mark(litDisc().inset(reach, reach));
}

void CanvasScreen::showGuides(std::vector<SnapGuide> guides) {
    if (guides == _guides) return;
    markOverlay();
    _guides = std::move(guides);
    markOverlay();
}

void CanvasScreen::showMarquee(const std::optional<gfx::Rect>& marquee) {
    if (marquee == _marquee) return;
    markOverlay();
    _marquee = marquee;
    markOverlay();
}

void CanvasScreen::lightHandle(const std::optional<gfx::Point>& handle) {
    if (handle == _litHandle) return;
    markOverlay();
    _litHandle = handle;
    markOverlay();
}

gfx::Rect CanvasScreen::litDisc() const {
    const double radius = litRadius * hairline();
    return {_litHandle->x - radius, _litHandle->y - radius, 2 * radius, 2 * radius};
}

void CanvasScreen::drawOverlay(gfx::Context& context) const {
    if (_guides.empty() && !_marquee && !_litHandle) return;
    const gfx::GraphicsStateGuard guard(context);
    context.setLineWidth(hairline());
    if (_litHandle && _canvas.selection.isValid()) {
        context.setFillColor(litColor);
        context.fillEllipse(litDisc());
    }
    if (_marquee) {
        context.setFillColor(marqueeGround);
        context.fillRect(*_marquee);
        context.setStrokeColor(marqueeEdge);
        context.beginPath();
        context.addRect(*_marquee);
        context.stroke();
    }
    context.setStrokeColor(guideColor);
    for (const SnapGuide& guide : _guides) {
        context.beginPath();
        context.moveTo(guide.from);
        context.lineTo(guide.to);
        context.stroke();
    }
}

}  // namespace kalim
