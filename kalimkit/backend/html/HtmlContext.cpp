#include "kalimkit/backend/html/HtmlContext.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/backend/html/HtmlFont.h"
#include "kalimkit/backend/html/HtmlImports.h"
#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/HtmlSurface.h"
#include "kalimkit/backend/html/PackedColor.h"

namespace kalim::gfx {

namespace {

// How far, in pixels, the shadow of a group may fall into view from. It bounds the group's memory.
constexpr double farthestCast = 2048;

int count(const Path& path) {
    return static_cast<int>(path.commands().size());
}

// Finds the rectangle along the axes that the path is, if it is one.
std::optional<Rect> asRect(const Path& path) {
    const std::vector<Point>& p = path.points();
    using enum PathCommand;
    static const std::vector<PathCommand> rectangle{Move, Line, Line, Line, Close};
    if (path.commands() != rectangle) return std::nullopt;
    const bool startsAcross =
        p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool startsDown =
        p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    if (!startsAcross && !startsDown) return std::nullopt;
    return Rect::spanning(p[0], p[2]);
}

// Without smoothing a pixel is painted when its middle is: the edge of the first such pixel.
double pixelEdge(double points, double scale) {
    return std::ceil(points * scale - 0.5) / scale;
}

}  // namespace

HtmlContext::HtmlContext(int surface, PixelSize size, double scale)
    : _surface(surface), _size(size), _scale(scale) {}

// ---- state and clip -------------------------------------------------------------------------

void HtmlContext::onSave() {
    page::save(_surface);
}

void HtmlContext::onRestore() {
    page::restore(_surface);
}

void HtmlContext::onClip(const Path& path) {
    const std::optional<Path> moved = snapped(path);
    const Path& shape = moved ? *moved : path;
    page::clip(_surface, shape.commands().data(), count(shape), shape.points().data(), _scale);
}

// ---- shapes, images, text -------------------------------------------------------------------

void HtmlContext::onFill(const Path& path) {
    const std::optional<Path> moved = snapped(path);
    const Path& shape = moved ? *moved : path;
    std::shared_ptr<const HtmlRaster> pattern;
    if (!prepareFill(pattern)) return;
    page::fill(_surface, shape.commands().data(), count(shape), shape.points().data(), _scale,
               packedColor(state().fillColor));
}

void HtmlContext::onStroke(const Path& path) {
    const AffineTransform pen = toDevice();
    prepare(state().interpolation);
    page::stroke(_surface, path.commands().data(), count(path), path.points().data(), _scale,
                 packedColor(state().strokeColor), state().lineWidth,
                 static_cast<int>(state().lineCap), static_cast<int>(state().lineJoin), pen.a,
                 pen.b, pen.c, pen.d);
}

void HtmlContext::onDrawRaster(const Image& image, const Rect& rect) {
    if (const auto raster = HtmlRaster::of(image)) {
        drawSource(raster->picture(), raster->size(), rect);
    }
}

void HtmlContext::onDrawSurface(Surface& surface, const Rect& rect) {
    const auto* const own = dynamic_cast<const HtmlSurface*>(&surface);
    if (!own) return Context::onDrawSurface(surface, rect);
    drawSource(own->number(), own->pixelSize(), rect);
}

void HtmlContext::onDrawText(std::string_view text, Point baseline, const Font& font) {
    const AffineTransform t = toDevice().translated(baseline.x, baseline.y);
    const HtmlFont given(font);
    const bool isStroke = state().textMode == TextMode::Stroke;
    std::shared_ptr<const HtmlRaster> pattern;
    if (isStroke) {
        prepare(state().interpolation);
    } else if (!prepareFill(pattern)) {
        return;
    }
    page::text(_surface, text.data(), static_cast<int>(text.size()), given.family,
               given.familyLength, given.size, given.style,
               packedColor(isStroke ? state().strokeColor : state().fillColor),
               isStroke ? state().lineWidth : 0, static_cast<int>(state().lineJoin), t.a, t.b, t.c,
               t.d, t.tx, t.ty);
}

// ---- groups ---------------------------------------------------------------------------------

void HtmlContext::onBeginGroup() {
    _groups.push_back(groupBox());
    const Rect& box = _groups.back().box;
    page::groupBegin(_surface, static_cast<int>(box.minX()), static_cast<int>(box.minY()),
                     static_cast<int>(box.size.width), static_cast<int>(box.size.height));
}

void HtmlContext::onEndGroup() {
    _groups.pop_back();
    prepare(state().interpolation);
    page::groupEnd(_surface);
}

// The pixels that the clip lets through and, for a shadow, those whose shadow may fall there. In a
// group that casts one the clip tells nothing of what is seen.
HtmlContext::Group HtmlContext::groupBox() const {
    const bool isInShadow = !_groups.empty() && _groups.back().castsShadow;
    const Rect whole = _groups.empty() ? Rect(0, 0, _size.width, _size.height) : _groups.back().box;
    Rect visible = whole;
    if (state().clipBounds && !isInShadow) {
        const Rect& clip = *state().clipBounds;
        visible = Rect(clip.minX() * _scale, clip.minY() * _scale, clip.size.width * _scale,
                       clip.size.height * _scale)
                      .intersection(whole)
                      .roundedOut();
    }
    if (!state().castsShadow() || visible.isEmpty()) return {visible, isInShadow};
    const double reach = 3 * state().shadow->blur / 2 * _scale + 1;
    const Rect casting = visible.offset(-(state().shadow->offset * _scale)).inset(-reach, -reach);
    return {visible.unionWith(casting)
                .intersection(visible.inset(-farthestCast, -farthestCast))
                .roundedOut(),
            true};
}

// ---- what they have in common ---------------------------------------------------------------

AffineTransform HtmlContext::toDevice() const {
    return state().transform.concat(AffineTransform::scaling(_scale, _scale));
}

// Tells the page how the next thing is painted. Its shadows ignore the transform, as ours do, but
// count in pixels.
void HtmlContext::prepare(Interpolation interpolation) const {
    page::paint(state().alpha, static_cast<int>(state().blendMode),
                static_cast<int>(interpolation));
    if (!state().castsShadow()) return;
    const Shadow& shadow = *state().shadow;
    page::shadow(shadow.offset.x * _scale, shadow.offset.y * _scale, shadow.blur * _scale,
                 packedColor(shadow.color));
}

// The same for what is filled; false where the pattern's picture cannot be had, which is to be held
// until the fill.
bool HtmlContext::prepareFill(std::shared_ptr<const HtmlRaster>& held) const {
    if (!state().fillPattern) {
        prepare(state().interpolation);
        return true;
    }
    const Pattern& pattern = *state().fillPattern;
    held = HtmlRaster::of(*pattern.image);
    if (!held) return false;
    const double points = 1 / pattern.image->scale();
    const AffineTransform t =
        AffineTransform::scaling(points, points)
            .concat(uprightTransform(pattern.image->orientation(), pattern.image->size()))
            .concat(pattern.transform)
            .concat(AffineTransform::scaling(_scale, _scale));
    prepare(pattern.interpolation);
    page::pattern(held->picture(), t.a, t.b, t.c, t.d, t.tx, t.ty);
    return true;
}

void HtmlContext::drawSource(int source, PixelSize size, const Rect& rect) const {
    const AffineTransform toPixels =
        AffineTransform::scaling(rect.size.width / size.width, rect.size.height / size.height)
            .concat(AffineTransform::translation(rect.origin))
            .concat(toDevice());
    const AffineTransform t = toPixels.wholePixels(size).value_or(toPixels);
    prepare(state().interpolation);
    page::draw(_surface, source, t.a, t.b, t.c, t.d, t.tx, t.ty);
}

// A canvas always smooths edges, so without smoothing a rectangle is moved onto whole pixels.
std::optional<Path> HtmlContext::snapped(const Path& path) const {
    if (state().antialias) return std::nullopt;
    const std::optional<Rect> rect = asRect(path);
    if (!rect) return std::nullopt;
    Path result;
    result.addRect(
        Rect::spanning({pixelEdge(rect->minX(), _scale), pixelEdge(rect->minY(), _scale)},
                       {pixelEdge(rect->maxX(), _scale), pixelEdge(rect->maxY(), _scale)}));
    return result;
}

}  // namespace kalim::gfx
