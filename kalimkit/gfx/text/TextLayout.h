#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/text/LineAlignment.h"
#include "kalimkit/gfx/text/TextLine.h"
#include "kalimkit/gfx/text/TextPosition.h"
#include "kalimkit/gfx/text/TextRange.h"

namespace kalim::gfx {

class LineOrder;
class MeasuredParagraph;

// A UTF-8 text in one font, broken into lines from the measures of a device. The first strong
// letter of a paragraph says in which direction it runs, unless that is settled; within its lines
// text stands as the Unicode Bidirectional Algorithm has it seen.
//
// Line feeds (and CR, and CR LF) end a paragraph. A paragraph is broken greedily where the device
// lets lines be broken; spaces hang beyond the limit; a word wider than the limit is broken between
// graphemes. There is always a line, an empty one for an empty text and after a line feed at the
// end. Bytes that are no UTF-8 count as replacement characters.
//
// Lengths are points; places are seen from the top-left corner of the first line. Copies share what
// was measured, so a copy with another limit is cheap; so is a new text that keeps most paragraphs
// of the old one.
class KALIM_API TextLayout {
public:
    static constexpr double unlimited = std::numeric_limits<double>::infinity();

    // The device must outlive the layout. Lines that reach below the limit's height are left out. A
    // limit that is not a number is none.
    TextLayout(Device& device, std::string text, const Font& font,
               Size limit = {unlimited, unlimited});

    void setText(std::string text);
    void setFont(const Font& font);
    void setLimit(Size limit);
    // As the first letters say, at first.
    void setBaseDirection(BaseDirection direction);
    // In the limit's width, or without one in that of the widest line. Left at first, which way
    // ever paragraphs run.
    void setAlignment(LineAlignment alignment);
    const std::string& text() const { return _text; }
    const Font& font() const { return _font; }
    Size limit() const { return _limit; }

    // ---- what came of it
    const std::vector<TextLine>& lines() const { return _lines; }
    // It is as wide as the widest line and as high as all lines with their leading, in points.
    Size size() const;
    // Adds the font's ascent, descent and leading.
    double lineHeight() const;
    // Whether some of a line's paragraph runs from right to left.
    bool isMixed(std::size_t line) const;

    // ---- caret and selection. Offsets within a grapheme count as its start, those beyond the end
    // as the end.
    // An index into lines(), which must not be empty.
    std::size_t lineOf(TextPosition position) const;
    // Without a width; as high as its line without the leading. Where two directions meet it is at
    // the start of what follows the offset, or upstream at the end of what comes before.
    Rect caretRect(TextPosition position) const;
    // Where text of the other direction would be put in, which is another place when the position
    // lies between two directions. Nothing where both are one.
    std::optional<Rect> otherCaretRect(TextPosition position) const;
    // The grapheme edge nearest to a point; a point above the first line or below the last counts
    // as in it.
    TextPosition positionAt(Point p) const;
    // One rectangle a line, or several where directions meet; where the selection goes on with the
    // next paragraph, the line feed shows as a narrow strip.
    std::vector<Rect> selectionRects(TextRange range) const;

    // ---- moves
    std::size_t snapped(std::size_t offset) const;
    std::size_t graphemeBefore(std::size_t offset) const;
    std::size_t graphemeAfter(std::size_t offset) const;
    // Starts of words backwards, ends of words forwards.
    std::size_t wordBefore(std::size_t offset) const;
    std::size_t wordAfter(std::size_t offset) const;
    // Finds the word, the space or the punctuation at an offset.
    TextRange wordAt(std::size_t offset) const;
    // The next place on the screen, one grapheme farther; from the end of a line that of the line
    // which comes before or after as one reads. The position itself where there is none.
    TextPosition leftOf(TextPosition position) const { return besides(position, false); }
    TextPosition rightOf(TextPosition position) const { return besides(position, true); }
    // Of the paragraph around the offset.
    bool isRightToLeft(std::size_t offset) const;
    // The place behind what ends at an offset, rather than before what follows, where these differ
    // within a line.
    TextPosition behind(std::size_t offset) const;
    TextPosition lineStart(TextPosition position) const;
    TextPosition lineEnd(TextPosition position) const;
    // On the line so many below (above where negative), as near to x as it gets; from the first
    // line up to the start of the text, from the last down to its end.
    TextPosition movedByLines(TextPosition position, int count, double x) const;

    // ---- drawing, in the text mode and colours that the context has. One drawText a line; a line
    // with tabs takes several.
    void draw(Context& context, Point topLeft) const;
    // Only the lines that meet a rectangle in the context's coordinates.
    void draw(Context& context, Point topLeft, const Rect& dirty) const;

private:
    struct Paragraph {
        std::size_t begin = 0;
        // The line feed lies beyond it.
        std::size_t end = 0;
        std::shared_ptr<const MeasuredParagraph> measured;
    };
    // What of its paragraph a line shows.
    struct Row {
        std::size_t paragraph = 0;
        std::size_t first = 0;
        std::size_t last = 0;
        // It is of a paragraph that runs from right to left, or an empty one behind such.
        bool isTurned = false;
    };

    // Texts of more bytes are not shaped anew when only their size changes, and not shaped at all
    // to be drawn too small to be read.
    static constexpr std::size_t longLength = 8192;
    // A selected line feed shows this wide, in line heights.
    static constexpr double lineFeedWidth = 0.25;

    static std::vector<Paragraph> split(std::string_view text);
    std::string_view textOf(const Paragraph& paragraph) const;
    void measure();
    void forgetMeasures();
    void scaleMeasures(double factor);
    void refresh();
    void breakLines();
    void alignLines();
    std::size_t paragraphAt(std::size_t offset) const;
    const MeasuredParagraph& measuredOf(const Row& row) const;
    double hung(std::size_t line, double x) const;
    double xOf(std::size_t line, std::size_t grapheme) const;
    LineOrder orderOf(std::size_t line) const;
    double shown(std::size_t line, double x) const;
    double caretXInMixed(std::size_t line, TextPosition position, bool isOther) const;
    static bool standsBehind(const Row& row, std::size_t grapheme, TextPosition position);
    std::size_t graphemeOf(std::size_t line, TextPosition position) const;
    // ---- the edges between graphemes as they are seen, counted from the left
    std::size_t edgeOf(std::size_t line, const LineOrder& order, TextPosition position) const;
    TextPosition atEdge(std::size_t line, const LineOrder& order, std::size_t grapheme,
                        bool isRightSide) const;
    TextPosition endOf(std::size_t line, bool isStart) const;
    TextPosition besides(TextPosition position, bool toRight) const;
    TextPosition besidesInPlain(TextPosition position, bool toRight) const;
    TextPosition positionInMixed(std::size_t line, double x) const;
    void addSelectionInMixed(std::size_t line, TextRange range, std::vector<Rect>& rects) const;
    void drawMixedLine(Context& context, Point baseline, std::size_t line) const;
    TextPosition positionInLine(std::size_t line, double x) const;
    bool isBrokenByWidth(std::size_t line) const;
    bool holdsWord(TextRange range) const;
    bool isBlank(std::size_t begin, std::size_t end) const;
    void drawLine(Context& context, Point topLeft, std::size_t line) const;
    bool isTooSmallToRead(const Context& context) const;
    void drawWordsAsBars(Context& context, Point topLeft, std::size_t line) const;

    Device* _device;
    std::string _text;
    Font _font;
    Size _limit;
    BaseDirection _base = BaseDirection::FirstLetter;
    LineAlignment _alignment = LineAlignment::Left;
    LineMetrics _metrics;
    // Of the device's measures.
    std::uint64_t _revision;
    std::vector<Paragraph> _paragraphs;
    std::vector<TextLine> _lines;
    // Every line has one.
    std::vector<Row> _rows;
};

}  // namespace kalim::gfx
