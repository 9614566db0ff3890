#include "kalimkit/backend/html/HtmlDirections.h"

#include <algorithm>
#include <array>
#include <vector>

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

enum class Kind { Left, Right, Number, Separator, Sign, Neutral };

struct Block {
    char32_t first;
    char32_t last;
};

// Hebrew to Arabic Extended, their presentation forms, and what lies beyond the first plane.
constexpr std::array<Block, 5> rightToLeftBlocks{
    {{0x0590, 0x08FF}, {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFE}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF}}};
// Here lie punctuation, symbols, marks without a script, and pictures.
constexpr std::array<Block, 17> neutralBlocks{{{0x00, 0x40},
                                               {0x5B, 0x60},
                                               {0x7B, 0xA9},
                                               {0xAB, 0xB4},
                                               {0xB6, 0xB9},
                                               {0xBB, 0xBF},
                                               {0xD7, 0xD7},
                                               {0xF7, 0xF7},
                                               {0x02B9, 0x036F},
                                               {0x2010, 0x2070},
                                               {0x2074, 0x209C},
                                               {0x20A0, 0x2BFF},
                                               {0x2E00, 0x3004},
                                               {0x3008, 0x3020},
                                               {0xFE00, 0xFE6F},
                                               {0xFF01, 0xFF20},
                                               {0x1F000, 0x1FAFF}}};
constexpr char32_t leftToRightMark = 0x200E;
constexpr char32_t rightToLeftMark = 0x200F;

template <std::size_t Count>
bool isIn(const std::array<Block, Count>& blocks, char32_t code) {
    return std::ranges::any_of(
        blocks, [&](const Block& block) { return code >= block.first && code <= block.last; });
}

bool isDigit(char32_t code) {
    return (code >= '0' && code <= '9') || (code >= 0x0660 && code <= 0x0669) ||
           (code >= 0x06F0 && code <= 0x06F9);
}

Kind kindOf(char32_t code) {
    if (isDigit(code)) return Kind::Number;
    if (code == rightToLeftMark) return Kind::Right;
    if (code == leftToRightMark) return Kind::Left;
    // The Arabic comma and the signs around it stand between letters of either direction.
    if (code == 0x060C || (code >= 0x0600 && code <= 0x0607)) return Kind::Neutral;
    if (isIn(rightToLeftBlocks, code)) return Kind::Right;
    switch (code) {
        case ',':
        case '.':
        case ':':
        case '/':
        case '+':
        case '-':
        case 0xA0:
            return Kind::Separator;
        case '#':
        case '$':
        case '%':
        case 0xA2:
        case 0xA3:
        case 0xA5:
        case 0xB0:
        case 0x20AC:
            return Kind::Sign;
        default:
            return isIn(neutralBlocks, code) ? Kind::Neutral : Kind::Left;
    }
}

bool isLetter(Kind kind) {
    return kind == Kind::Left || kind == Kind::Right;
}

// A separator between two numbers belongs to them, and so do the signs next to one.
void joinNumbers(std::vector<Kind>& kinds) {
    for (std::size_t i = 1; i + 1 < kinds.size(); ++i) {
        const bool isBetween = kinds[i - 1] == Kind::Number && kinds[i + 1] == Kind::Number;
        if (kinds[i] == Kind::Separator && isBetween) kinds[i] = Kind::Number;
    }
    for (std::size_t i = 1; i < kinds.size(); ++i) {
        if (kinds[i] == Kind::Sign && kinds[i - 1] == Kind::Number) kinds[i] = Kind::Number;
    }
    for (std::size_t i = kinds.size(); i-- > 1;) {
        if (kinds[i - 1] == Kind::Sign && kinds[i] == Kind::Number) kinds[i - 1] = Kind::Number;
    }
}

// Numbers behind letters that run from left to right go along with them.
void settleNumbers(std::vector<Kind>& kinds, Kind base) {
    Kind before = base;
    for (Kind& kind : kinds) {
        if (isLetter(kind)) before = kind;
        if (kind == Kind::Number && before == Kind::Left) kind = Kind::Left;
    }
}

// What has no direction takes that of its two neighbours where they agree, else the paragraph's. A
// number counts as what surrounds it, which runs from right to left.
void settleNeutrals(std::vector<Kind>& kinds, Kind base) {
    const auto isSettled = [](Kind kind) { return isLetter(kind) || kind == Kind::Number; };
    const auto sideOf = [](Kind kind) { return kind == Kind::Number ? Kind::Right : kind; };
    for (auto first = kinds.begin(); first != kinds.end();) {
        first = std::find_if_not(first, kinds.end(), isSettled);
        const auto last = std::find_if(first, kinds.end(), isSettled);
        const Kind before = first == kinds.begin() ? base : sideOf(*(first - 1));
        const Kind after = last == kinds.end() ? base : sideOf(*last);
        std::fill(first, last, before == after ? before : base);
        first = last;
    }
}

std::uint8_t levelOf(Kind kind, std::uint8_t baseLevel) {
    if (kind == Kind::Number) return 2;
    if (kind == Kind::Right) return 1;
    return baseLevel == 0 ? 0 : 2;
}

}  // namespace

TextDirections htmlDirections(std::string_view paragraph, std::span<const std::size_t> graphemes,
                              BaseDirection direction) {
    std::vector<Kind> kinds;
    kinds.reserve(graphemes.size());
    for (const std::size_t begin : graphemes)
        kinds.push_back(kindOf(decodeUtf8(paragraph, begin).value));
    const std::vector<Kind> given = kinds;
    const auto firstLetter = std::ranges::find_if(kinds, isLetter);
    Kind base = firstLetter == kinds.end() ? Kind::Left : *firstLetter;
    if (direction != BaseDirection::FirstLetter)
        base = direction == BaseDirection::RightToLeft ? Kind::Right : Kind::Left;
    TextDirections result;
    result.baseLevel = base == Kind::Right ? 1 : 0;
    const bool isPlain = std::ranges::find(kinds, Kind::Right) == kinds.end();
    if (isPlain && !result.isRightToLeft()) return result;
    joinNumbers(kinds);
    settleNumbers(kinds, base);
    settleNeutrals(kinds, base);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const char first = paragraph[graphemes[i]];
        result.graphemes.push_back(
            {levelOf(kinds[i], result.baseLevel), given[i] == Kind::Neutral && first == ' '});
    }
    return result;
}

}  // namespace kalim::gfx
