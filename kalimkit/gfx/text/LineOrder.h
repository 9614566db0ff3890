#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kalimkit/gfx/text/MeasuredParagraph.h"

namespace kalim::gfx {

// Where the graphemes of one line are seen, when some of it runs from right to left. Places are
// points from the line's left end; graphemes are counted as in their paragraph.
class LineOrder {
public:
    struct Span {
        double left = 0;
        double right = 0;
        bool isRightToLeft = false;
        bool isTab = false;

        // Where it is entered and where it is left by one who reads it.
        double leading() const { return isRightToLeft ? right : left; }
        double trailing() const { return isRightToLeft ? left : right; }
    };
    // Neighbours of one direction, which are drawn together. Tabs stand by themselves.
    struct Run {
        std::size_t first = 0;
        std::size_t last = 0;
        double left = 0;
        bool isRightToLeft = false;
    };

    // `width` is that of the line. Spaces that hang do so at the end where the paragraph ends a
    // line.
    LineOrder(const MeasuredParagraph& paragraph, std::size_t first, std::size_t last,
              double width);

    const Span& spanOf(std::size_t grapheme) const { return _spans[grapheme - _first]; }
    // Lists the graphemes from left to right.
    const std::vector<std::size_t>& seen() const { return _seen; }
    // An index into seen().
    std::size_t placeOf(std::size_t grapheme) const;
    std::vector<Run> runs() const;

private:
    std::size_t _first;
    std::vector<Span> _spans;
    std::vector<std::size_t> _seen;
};

}  // namespace kalim::gfx
