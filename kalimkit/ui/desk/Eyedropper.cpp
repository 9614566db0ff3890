#include "kalimkit/ui/desk/Eyedropper.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/desk/ColorMath.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double radius = 55;
constexpr double pixelSide = 10;
// How far the magnifier stays from the pointer, and above a finger that would cover it.
constexpr double pointerGap = 16;
constexpr double fingerGap = 40;
constexpr double nameHeight = 24;
constexpr double nameWidth = 96;
constexpr double edge = 2;
const gfx::Font nameFont{"", 12};

}  // namespace

std::shared_ptr<Eyedropper> Eyedropper::show(View& source, Handler handler) {
    Window* const window = source.window();
    if (!window) return nullptr;
    window->display();
    const std::shared_ptr<Eyedropper> dropper(new Eyedropper);
    dropper->init(window->rootView()->bounds());
    if (const auto& surface = window->surface()) {
        dropper->_shown = surface->makeImage()->pixels();
        dropper->_scale = surface->scale();
    }
    dropper->setMultipleTouchEnabled(true);
    dropper->_source =
        source.convertRectTo(source.bounds(), nullptr).intersection({{}, window->size()});
    dropper->_size = window->size();
    dropper->_handler = std::move(handler);
    dropper->setAccessibilityRole(AccessibilityRole::Dialog);
    dropper->setAccessibilityLabel(Environment::current().localizedString("取色"));
    dropper->setAccessibilityModal(true);
    Overlay::in(*window)->grab(dropper);
    return dropper;
}

std::optional<gfx::Color> Eyedropper::colorAt(gfx::Point place) const {
    if (!_shown || !_source.contains(place)) return std::nullopt;
    const int x = static_cast<int>(std::floor(place.x * _scale));
    const int y = static_cast<int>(std::floor(place.y * _scale));
    if (x < 0 || y < 0 || x >= _shown->width() || y >= _shown->height()) return std::nullopt;
    return _shown->colorAt(x, y).withAlpha(1);
}

// ---- ending

void Eyedropper::end(const std::optional<gfx::Color>& color) {
    if (std::exchange(_isOver, true)) return;
    const auto alive = shared_from_this();
    const Handler handler = std::exchange(_handler, {});
    removeFromSuperview();
    if (handler) handler(color);
}

bool Eyedropper::handleKey(std::string_view key, bool isRepeated) {
    if (key == "escape" && !isRepeated) cancel();
    if ((key == "enter" || key == "space") && !isRepeated && _place) end(colorAt(*_place));
    return true;
}

// What was shown is no longer what is seen.
void Eyedropper::layoutSubviews() {
    if (window() && window()->size() != _size) cancel();
}

void Eyedropper::didMoveToWindow() {
    if (!window()) cancel();
}

// ---- pointer and fingers

void Eyedropper::moveTo(gfx::Point place, bool isFinger) {
    if (_place) setNeedsDisplay(magnifier().inset(-edge, -edge));
    _place = place;
    _isFinger = isFinger;
    setNeedsDisplay(magnifier().inset(-edge, -edge));
}

void Eyedropper::pointerExited() {
    if (_place) setNeedsDisplay(magnifier().inset(-edge, -edge));
    _place.reset();
}

std::optional<Cursor> Eyedropper::cursorAt(gfx::Point p) {
    return _source.contains(p) ? Cursor::Cross : Cursor::NotAllowed;
}

// A mouse's finger comes where the mouse hovers.
void Eyedropper::touchesBegan(const TouchEvent& event) {
    if (event.allTouches.size() > event.touches.size()) _hasCompany = true;
    if (_hasCompany) return pointerExited();
    const gfx::Point place = event.touches.front()->locationIn(this);
    moveTo(place, !window()->hover().place());
}

void Eyedropper::touchesMoved(const TouchEvent& event) {
    if (!_hasCompany) moveTo(event.touches.front()->locationIn(this), _isFinger);
}

// Beside the picture there is nothing to pick; it goes on.
void Eyedropper::touchesEnded(const TouchEvent& event) {
    const bool isLast = event.allTouches.size() == event.touches.size();
    if (!_hasCompany) return pick(event);
    _hasCompany = !isLast;
}

void Eyedropper::pick(const TouchEvent& event) {
    moveTo(event.touches.front()->locationIn(this), _isFinger);
    if (const auto color = colorAt(*_place)) end(color);
}

// ---- drawing

// With the colour's name below it; on the other side of the pointer where the window ends.
gfx::Rect Eyedropper::magnifier() const {
    const gfx::Point place = _place.value_or(gfx::Point());
    const gfx::Size size{2 * radius, 2 * radius + nameHeight};
    gfx::Point corner{place.x + pointerGap, place.y + pointerGap};
    if (_isFinger) corner = {place.x - radius, place.y - fingerGap - size.height};
    const gfx::Rect& whole = bounds();
    if (corner.x + size.width > whole.maxX()) {
        corner.x = _isFinger ? whole.maxX() - size.width : place.x - pointerGap - size.width;
    }
    if (corner.y + size.height > whole.maxY()) corner.y = place.y - pointerGap - size.height;
    if (corner.y < whole.minY()) corner.y = place.y + (_isFinger ? fingerGap : pointerGap);
    corner.x = std::max(corner.x, whole.minX());
    return {corner, size};
}

void Eyedropper::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    if (!_place || !_shown) return;
    const gfx::Rect all = magnifier();
    const gfx::Rect disc(all.minX(), all.minY(), 2 * radius, 2 * radius);
    drawPixels(context, disc);
    drawName(context, disc);
}

void Eyedropper::drawPixels(gfx::Context& context, const gfx::Rect& disc) const {
    const Palette palette = Palette::current();
    {
        const gfx::GraphicsStateGuard guard(context);
        context.addEllipse(disc);
        context.clip();
        context.setFillColor(palette.window);
        context.fillRect(disc);
        const gfx::Point middle = disc.center() - gfx::Point{pixelSide / 2, pixelSide / 2};
        const int reach = static_cast<int>(std::ceil(radius / pixelSide));
        for (int row = -reach; row <= reach; ++row) {
            for (int column = -reach; column <= reach; ++column) {
                const auto color = colorAt(*_place + gfx::Point{column / _scale, row / _scale});
                if (!color) continue;
                context.setFillColor(*color);
                context.fillRect({middle.x + column * pixelSide, middle.y + row * pixelSide,
                                  pixelSide, pixelSide});
            }
        }
        const gfx::Rect picked(middle.x, middle.y, pixelSide, pixelSide);
        context.setLineWidth(1);
        context.setStrokeColor({0, 0, 0});
        context.strokeRect(picked.inset(-1, -1));
        context.setStrokeColor({1, 1, 1});
        context.strokeRect(picked);
    }
    context.setStrokeColor(palette.tip);
    context.setLineWidth(edge);
    context.strokeEllipse(disc.inset(edge / 2, edge / 2));
}

void Eyedropper::drawName(gfx::Context& context, const gfx::Rect& disc) const {
    const auto color = colorAt(*_place);
    if (!color) return;
    const Palette palette = Palette::current();
    const gfx::Rect plate(disc.midX() - nameWidth / 2, disc.maxY() + 2, nameWidth, nameHeight - 2);
    context.setFillColor(palette.tip);
    context.addPath(gfx::roundedRect(plate, plate.size.height / 2));
    context.fill();
    const double side = plate.size.height - 8;
    context.setFillColor(*color);
    context.fillEllipse({plate.minX() + 6, plate.minY() + 4, side, side});
    context.setFillColor(palette.tipText);
    const gfx::Rect text(plate.minX() + side + 10, plate.minY(), plate.size.width - side - 12,
                         plate.size.height);
    AlignedText(writtenColor(*color), nameFont, text.size, 1)
        .draw(context, text, TextAlignment::Left);
}

}  // namespace kalim::ui
