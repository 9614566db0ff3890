#pragma once

#include <cstdint>
#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::gfx {

// How many points a command takes: Move and Line one, Quad two, Cubic three (controls first, the
// end last), Close none.
enum class PathCommand : std::uint8_t { Move, Line, Quad, Cubic, Close };

// A vector path as plain data: a list of commands and the list of their points in order. It needs
// no painter, so geometry, hit tests and comparisons work anywhere.
class KALIM_API Path {
public:
    // ---- building. A line, curve or arc without a current point starts the path at its own first
    // point, a curve at its first control. Closing an empty or closed path does nothing.
    void moveTo(Point p);
    void lineTo(Point p);
    void quadTo(Point control, Point end);
    void cubicTo(Point control1, Point control2, Point end);
    void close();

    void addRect(const Rect& rect);
    // Adds the ellipse inscribed in the rectangle, as four cubics and a close.
    void addEllipse(const Rect& rect);
    // Joins the current point to the arc's start by a line. Radians; `clockwise` is meant in a
    // space whose y axis points up, so false runs through growing angles, which looks clockwise
    // where y grows downwards. The end is first brought by whole turns to the side that the
    // direction asks for. A radius of 0 or below yields the centre alone.
    void addArc(Point center, double radius, double startAngle, double endAngle, bool clockwise);
    void addPath(const Path& other);

    // ---- reading
    bool isEmpty() const { return _commands.empty(); }
    const std::vector<PathCommand>& commands() const { return _commands; }
    const std::vector<Point>& points() const { return _points; }
    // The point that the next line starts from; the origin while the path is empty.
    Point currentPoint() const { return _current; }
    // The tight box of what is drawn, control points left out; the point alone when the path only
    // moves, the zero rectangle when it is empty.
    Rect boundingBox() const;
    // The box of all points, control points included; cheaper, and never smaller. The zero
    // rectangle when the path is empty.
    Rect pointBounds() const;
    Path transformed(const AffineTransform& transform) const;

    bool operator==(const Path& other) const {
        return _commands == other._commands && _points == other._points;
    }

private:
    void startAt(Point p);

    std::vector<PathCommand> _commands;
    std::vector<Point> _points;
    Point _current;
    Point _subpathStart;
};

}  // namespace kalim::gfx
