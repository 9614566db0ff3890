#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/Path.h"

namespace kalim::gfx {

class Surface;

// An immediate-mode drawing context. User space is in points, y grows downwards, the origin is the
// surface's top-left corner.
//
// The state stack and the current path are kept here; a backend implements the few operations that
// paint and reads state() when it does. Points join the path through the transform in force at that
// moment; the pen takes the transform in force at the stroke.
class KALIM_API Context {
public:
    Context() = default;
    virtual ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    // ---- state ------------------------------------------------------------------------------
    void save();
    // A restore without its save does nothing.
    void restore();
    const GraphicsState& state() const { return _state; }

    // Ignored when negative or not finite. A stroke of width 0 draws nothing.
    void setLineWidth(double width);
    void setLineCap(LineCap cap) { _state.lineCap = cap; }
    void setLineJoin(LineJoin join) { _state.lineJoin = join; }
    void setStrokeColor(const Color& color) { _state.strokeColor = color; }
    void setFillColor(const Color& color);
    // Ignored without an image or with a transform that cannot be inverted.
    void setFillPattern(const Pattern& pattern);
    // Ignored when not finite; a negative blur counts as 0.
    void setShadow(const Shadow& shadow);
    void clearShadow() { _state.shadow.reset(); }
    // Shadows that are set from now on fall to where the turn takes their offset, as if all that is
    // drawn were turned as a picture.
    void setShadowTurn(const AffineTransform& turn) { _state.shadowTurn = turn; }
    // Values beyond 0 to 1 are clamped.
    void setAlpha(double alpha);
    void setBlendMode(BlendMode mode) { _state.blendMode = mode; }
    void setInterpolation(Interpolation interpolation) { _state.interpolation = interpolation; }
    void setTextMode(TextMode mode) { _state.textMode = mode; }
    // Where a backend cannot draw hard edges, as a web page, false moves the edges of rectangles
    // that lie along the axes onto whole pixels and changes nothing else.
    void setAntialias(bool antialias) { _state.antialias = antialias; }

    // ---- transform --------------------------------------------------------------------------
    // The new step applies to user coordinates first. Ignored when the result is not finite.
    void concat(const AffineTransform& transform);
    void translate(double x, double y) { concat(AffineTransform::translation(x, y)); }
    void scale(double x, double y) { concat(AffineTransform::scaling(x, y)); }
    void rotate(double radians) { concat(AffineTransform::rotation(radians)); }
    const AffineTransform& transform() const { return _state.transform; }
    // Device pixels per point of the surface, for what must meet whole pixels; 1 where there are
    // none.
    virtual double deviceScale() const { return 1; }

    // ---- path -------------------------------------------------------------------------------
    // A call with a point that is not finite, as given or as transformed, does nothing.
    void beginPath() { _path = {}; }
    void moveTo(Point p);
    void lineTo(Point p);
    void quadTo(Point control, Point end);
    void cubicTo(Point control1, Point control2, Point end);
    void closePath() { _path.close(); }
    void addRect(const Rect& rect);
    void addEllipse(const Rect& rect);
    // Means what Path::addArc means.
    void addArc(Point center, double radius, double startAngle, double endAngle, bool clockwise);
    void addPath(const Path& path);

    // ---- painting ---------------------------------------------------------------------------
    // Each of these consumes the current path; those with a rectangle replace it by their own.
    // Clipping to an empty path leaves nothing to draw on.
    void fill();
    void stroke();
    void clip();
    void fillRect(const Rect& rect);
    void strokeRect(const Rect& rect);
    void fillEllipse(const Rect& rect);
    void strokeEllipse(const Rect& rect);
    void clipToRect(const Rect& rect);
    // A box in user space that holds everything the clip lets through, so that what lies outside
    // need not be drawn. Huge, but finite, without a clip; empty when nothing can be drawn.
    Rect clipBounds() const;

    // ---- images -----------------------------------------------------------------------------
    // Draws the picture upright, as its orientation says, stretched over the rectangle.
    void drawImage(const Image& image, const Rect& rect);
    // Draws the raster as it is stored, row 0 at the rectangle's top.
    void drawRaster(const Image& image, const Rect& rect);
    // Draws what another surface of the same device shows at this moment, stretched over the
    // rectangle. No picture of it is made where the backend can do without.
    void drawSurface(Surface& surface, const Rect& rect);

    // ---- text -------------------------------------------------------------------------------
    // One run of UTF-8 without line breaks, its baseline starting at the point. Filled with the
    // fill colour or outlined with the stroke colour and line width, by the text mode. Bytes that
    // are no UTF-8 are drawn as the replacement character.
    void drawText(std::string_view text, Point baseline, const Font& font);

    // ---- groups -----------------------------------------------------------------------------
    // What is drawn until the end is composed by itself and then painted as one with the alpha,
    // shadow and blend mode in force at the beginning; inside, these start afresh. The pair also
    // saves and restores the state.
    void beginTransparencyGroup();
    void endTransparencyGroup();

protected:
    // Paths arrive in the surface's points; a stroke's pen is the circle of diameter
    // state().lineWidth carried through state().transform. Fills are non-zero.
    virtual void onSave() = 0;
    virtual void onRestore() = 0;
    virtual void onClip(const Path& path) = 0;
    virtual void onFill(const Path& path) = 0;
    virtual void onStroke(const Path& path) = 0;
    // In user space: state().transform is to be applied.
    virtual void onDrawRaster(const Image& image, const Rect& rect) = 0;
    // As onDrawRaster. The default draws a picture of the surface.
    virtual void onDrawSurface(Surface& surface, const Rect& rect);
    virtual void onDrawText(std::string_view text, Point baseline, const Font& font) = 0;
    // state() is in both the one in force at the beginning of the group. The calls nest: onSave,
    // onBeginGroup, what the group draws, onEndGroup, onRestore.
    virtual void onBeginGroup() = 0;
    virtual void onEndGroup() = 0;

private:
    Path takePath();

    GraphicsState _state;
    std::vector<GraphicsState> _saved;
    // For each open group, how many states had been saved when it began.
    std::vector<std::size_t> _groupDepths;
    Path _path;
};

// Saves the state on construction and restores it at the end of the scope.
class GraphicsStateGuard {
public:
    explicit GraphicsStateGuard(Context& context) : _context(context) { _context.save(); }
    ~GraphicsStateGuard() { _context.restore(); }
    GraphicsStateGuard(const GraphicsStateGuard&) = delete;
    GraphicsStateGuard& operator=(const GraphicsStateGuard&) = delete;

private:
    Context& _context;
};

}  // namespace kalim::gfx
