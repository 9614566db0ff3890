#include "kalimkit/gfx/text/MeasuredParagraph.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kalimkit/gfx/text/DirectedRun.h"

namespace kalim::gfx {

namespace {

// Long paragraphs are shaped in pieces of about this many bytes, so that no backend's shaping of
// one long run sets the pace.
constexpr std::size_t pieceLength = 1024;
// One of so many places where a line could be broken ends a piece that is long enough.
constexpr std::uint32_t placesPerPiece = 16;
// Points by which a line may exceed its limit: a limit that comes from a width and an inset is off
// by a rounding.
constexpr double tolerance = 1e-3;
// Distance of tab stops in font sizes.
constexpr double tabSizes = 2;
constexpr std::string_view ideographicSpace = "\u3000";

// By the sixteen bytes before it (FNV), so that pieces behind a change end where they did, and what
// is known of them is still good.
bool endsPiece(const char* end) {
    std::uint32_t sum = 0;
    for (const char* at = end - 16; at < end; ++at)
        sum = (sum ^ static_cast<unsigned char>(*at)) * 16777619U;
    return (sum >> 16U) % placesPerPiece == 0;
}

}  // namespace

MeasuredParagraph::MeasuredParagraph(Device& device, std::string_view text, const Font& font,
                                     BaseDirection base)
    : _directions(device.directions(text, base)),
      _length(text.size()),
      _tabInterval(std::max(font.size, 0.0) * tabSizes) {
    if (!text.empty()) measure(device, text, font);
}

MeasuredParagraph MeasuredParagraph::scaled(double factor) const {
    MeasuredParagraph result = *this;
    result._tabInterval *= factor;
    for (Grapheme& grapheme : result._graphemes)
        grapheme.advance *= factor;
    return result;
}

void MeasuredParagraph::measure(Device& device, std::string_view text, const Font& font) {
    const std::vector<std::size_t> edges = device.boundaries(text, TextBoundary::Grapheme);
    const std::vector<std::size_t> breaks = device.boundaries(text, TextBoundary::Line);
    _graphemes.reserve(edges.size());
    auto nextBreak = breaks.begin();
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const std::string_view grapheme = text.substr(edges[i], edges[i + 1] - edges[i]);
        while (nextBreak != breaks.end() && *nextBreak < edges[i])
            ++nextBreak;
        const bool isTab = grapheme == "\t";
        _graphemes.push_back({edges[i], 0, nextBreak != breaks.end() && *nextBreak == edges[i],
                              isTab || grapheme == " " || grapheme == ideographicSpace, isTab});
    }
    for (std::size_t first = 0; first < _graphemes.size();) {
        const std::size_t last = endOfPiece(text, first);
        measurePiece(device, text, font, first, last);
        first = last;
    }
}

bool MeasuredParagraph::turnsBefore(std::size_t grapheme) const {
    if (_directions.isPlain()) return false;
    const auto& all = _directions.graphemes;
    return all[grapheme].level % 2 != all[grapheme - 1].level % 2;
}

// A tab is a piece of its own; other pieces end before a tab, where the direction changes or, from
// some length on, where a line could be broken.
std::size_t MeasuredParagraph::endOfPiece(std::string_view text, std::size_t first) const {
    if (_graphemes[first].isTab) return first + 1;
    std::size_t last = first + 1;
    for (; last < _graphemes.size() && !_graphemes[last].isTab && !turnsBefore(last); ++last) {
        const std::size_t length = _graphemes[last].offset - _graphemes[first].offset;
        if (length < pieceLength) continue;
        if (length >= 4 * pieceLength) break;
        if (!_graphemes[last].mayBreakBefore) continue;
        if (length >= 2 * pieceLength || endsPiece(text.data() + _graphemes[last].offset)) break;
    }
    return last;
}

void MeasuredParagraph::measurePiece(Device& device, std::string_view text, const Font& font,
                                     std::size_t first, std::size_t last) {
    if (_graphemes[first].isTab) return;
    const std::size_t begin = offsetOf(first);
    const std::string_view piece = text.substr(begin, offsetOf(last) - begin);
    std::vector<double> advances;
    if (_directions.isPlain()) {
        advances = device.advances(piece, font);
    } else {
        const bool isRightToLeft = _directions.graphemes[first].level % 2 != 0;
        advances = device.advances(directedRun(piece, isRightToLeft), font);
        // That of the override.
        if (!advances.empty()) advances.erase(advances.begin());
    }
    for (std::size_t i = 0; i < std::min(advances.size(), last - first); ++i)
        _graphemes[first + i].advance = advances[i];
}

std::size_t MeasuredParagraph::offsetOf(std::size_t grapheme) const {
    return grapheme < _graphemes.size() ? _graphemes[grapheme].offset : _length;
}

std::size_t MeasuredParagraph::graphemeAt(std::size_t offset) const {
    if (offset >= _length) return _graphemes.size();
    const auto after = std::ranges::upper_bound(_graphemes, offset, {}, &Grapheme::offset);
    return static_cast<std::size_t>(after - _graphemes.begin()) - 1;
}

double MeasuredParagraph::advanced(double x, std::size_t grapheme) const {
    const Grapheme& one = _graphemes[grapheme];
    if (!one.isTab) return x + one.advance;
    return _tabInterval > 0 ? (std::floor(x / _tabInterval) + 1) * _tabInterval : x;
}

std::vector<MeasuredParagraph::Line> MeasuredParagraph::lines(double widthLimit) const {
    std::vector<Line> result;
    std::size_t first = 0;
    do {
        const std::size_t last = endOfLine(first, widthLimit);
        result.push_back({first, last, widthOf(first, last, widthLimit)});
        first = last;
    } while (first < _graphemes.size());
    return result;
}

// Spaces never end a line, so they hang beyond the limit; a word that is wider than the limit is
// broken where it must be, but a line always has one grapheme.
std::size_t MeasuredParagraph::endOfLine(std::size_t first, double widthLimit) const {
    std::size_t lastBreak = first;
    double x = 0;
    for (std::size_t i = first; i < _graphemes.size(); ++i) {
        if (_graphemes[i].mayBreakBefore) lastBreak = i;
        x = advanced(x, i);
        const bool isTooWide = x > widthLimit + tolerance && !_graphemes[i].isSpace;
        if (isTooWide && i > first) return lastBreak > first ? lastBreak : i;
    }
    return _graphemes.size();
}

double MeasuredParagraph::widthOf(std::size_t first, std::size_t last, double widthLimit) const {
    double all = 0;
    double visible = 0;
    for (std::size_t i = first; i < last; ++i) {
        all = advanced(all, i);
        if (!_graphemes[i].isSpace) visible = all;
    }
    const bool endsParagraph = last == _graphemes.size();
    return endsParagraph ? std::max(visible, std::min(all, widthLimit)) : visible;
}

}  // namespace kalim::gfx
