#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

// A text without line feeds, measured in one font, and its division into lines.
class MeasuredParagraph {
public:
    struct Grapheme {
        // Bytes from the paragraph's start.
        std::size_t offset = 0;
        // Points; meaningless for a tab, which ends at the next stop.
        double advance = 0;
        bool mayBreakBefore = false;
        bool isSpace = false;
        bool isTab = false;
    };
    // Holds graphemes from `first` up to, not including, `last`.
    struct Line {
        std::size_t first = 0;
        std::size_t last = 0;
        // Counts as TextLine::width does.
        double width = 0;
    };

    MeasuredParagraph(Device& device, std::string_view text, const Font& font, BaseDirection base);

    // The same in the same font at another size, so many times as large.
    MeasuredParagraph scaled(double factor) const;

    const std::vector<Grapheme>& graphemes() const { return _graphemes; }
    const TextDirections& directions() const { return _directions; }
    // Yields the offset of a grapheme, and the paragraph's length for their number.
    std::size_t offsetOf(std::size_t grapheme) const;
    // The grapheme that holds a byte; their number from the paragraph's length on.
    std::size_t graphemeAt(std::size_t offset) const;
    // Where the grapheme ends in a line when it starts at x.
    double advanced(double x, std::size_t grapheme) const;
    // Greedy. There is a line even where there is no text.
    std::vector<Line> lines(double widthLimit) const;

private:
    void measure(Device& device, std::string_view text, const Font& font);
    bool turnsBefore(std::size_t grapheme) const;
    void measurePiece(Device& device, std::string_view text, const Font& font, std::size_t first,
                      std::size_t last);
    std::size_t endOfPiece(std::string_view text, std::size_t first) const;
    std::size_t endOfLine(std::size_t first, double widthLimit) const;
    double widthOf(std::size_t first, std::size_t last, double widthLimit) const;

    std::vector<Grapheme> _graphemes;
    TextDirections _directions;
    std::size_t _length;
    double _tabInterval;
};

}  // namespace kalim::gfx
