// The device held against the test files of the Unicode Character Database, where the package
// unicode-data has put them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/FriBidiDirections.h"
#include "kalimkit/gfx/Utf8.h"
#include "kalimkit/gfx/text/VisualOrder.h"
#include "tests/backend/device/Canvas.h"

namespace kalim::gfx {
namespace {

using Offsets = std::vector<std::size_t>;

// Of half a million lines so many are enough for every time; all of them hold.
constexpr std::size_t everySo = 16;

// Each line without its comment. Whether the file is there.
bool readLines(const std::string& name, const std::function<void(const std::string&)>& use) {
    std::ifstream file("/usr/share/unicode/" + name);
    for (std::string line; std::getline(file, line);) {
        line.resize(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") != std::string::npos) use(line);
    }
    return file.eof();
}

struct Text {
    std::string utf8;
    Offsets offsets;

    void add(char32_t code) {
        offsets.push_back(utf8.size());
        appendUtf8(utf8, code);
    }
};

Text textOf(const std::string& codes) {
    Text text;
    std::istringstream stream(codes);
    for (std::uint32_t code = 0; stream >> std::hex >> code;)
        text.add(code);
    return text;
}

// What the levels of a line come to that holds the whole paragraph; -1 for what is removed, as in
// the expectation.
std::vector<int> levelsOf(const Text& text, BaseDirection base, const std::vector<int>& expected) {
    const TextDirections directions = friBidiDirections(text.utf8, text.offsets, base);
    std::vector<int> levels(text.offsets.size(), 0);
    bool isAtEnd = true;
    for (std::size_t i = levels.size(); i-- > 0 && !directions.isPlain();) {
        isAtEnd = isAtEnd && directions.graphemes[i].isBlank;
        levels[i] = isAtEnd ? directions.baseLevel : directions.graphemes[i].level;
    }
    for (std::size_t i = 0; i < std::min(levels.size(), expected.size()); ++i) {
        if (expected[i] < 0) levels[i] = -1;
    }
    return levels;
}

std::vector<int> numbersOf(const std::string& text) {
    std::vector<int> numbers;
    std::istringstream stream(text);
    for (std::string word; stream >> word;)
        numbers.push_back(word == "x" ? -1 : std::stoi(word));
    return numbers;
}

std::vector<int> orderOf(const std::vector<int>& levels) {
    std::vector<std::uint8_t> kept;
    std::vector<int> places;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i] < 0) continue;
        kept.push_back(static_cast<std::uint8_t>(levels[i]));
        places.push_back(static_cast<int>(i));
    }
    std::vector<int> order;
    for (const std::size_t place : visualOrder(kept))
        order.push_back(places[place]);
    return order;
}

TEST(UnicodeData, CharactersHaveTheLevelsOfTheBidirectionalAlgorithm) {
    constexpr BaseDirection bases[] = {BaseDirection::LeftToRight, BaseDirection::RightToLeft,
                                       BaseDirection::FirstLetter};
    std::size_t count = 0;
    const bool isThere = readLines("BidiCharacterTest.txt", [&](const std::string& line) {
        if (count++ % everySo != 0) return;
        std::vector<std::string> fields;
        std::istringstream stream(line);
        for (std::string field; std::getline(stream, field, ';');)
            fields.push_back(field);
        const std::vector<int> expected = numbersOf(fields.at(3));
        const std::vector<int> levels = levelsOf(
            textOf(fields[0]), bases[static_cast<std::size_t>(std::stoi(fields[1]))], expected);
        if (levels == expected && orderOf(levels) == numbersOf(fields.at(4))) return;
        ADD_FAILURE() << line;
    });
    if (!isThere) GTEST_SKIP() << "there is no unicode-data";
}

// One character of each class.
char32_t characterOf(const std::string& name) {
    const std::pair<const char*, char32_t> classes[] = {
        {"L", 'a'},      {"R", 0x5D0},    {"AL", 0x627},   {"EN", '1'},     {"ES", '+'},
        {"ET", '#'},     {"AN", 0x661},   {"CS", ','},     {"NSM", 0x300},  {"BN", 0xAD},
        {"B", 0x2029},   {"S", '\t'},     {"WS", ' '},     {"ON", '!'},     {"LRE", 0x202A},
        {"LRO", 0x202D}, {"RLE", 0x202B}, {"RLO", 0x202E}, {"PDF", 0x202C}, {"LRI", 0x2066},
        {"RLI", 0x2067}, {"FSI", 0x2068}, {"PDI", 0x2069}};
    for (const auto& [known, code] : classes) {
        if (name == known) return code;
    }
    return 0;
}

TEST(UnicodeData, ClassesHaveTheLevelsOfTheBidirectionalAlgorithm) {
    std::vector<int> expected;
    std::size_t count = 0;
    const bool isThere = readLines("BidiTest.txt", [&](const std::string& line) {
        if (line.starts_with("@Levels:")) expected = numbersOf(line.substr(8));
        if (line.starts_with("@") || count++ % everySo != 0) return;
        Text text;
        std::istringstream stream(line.substr(0, line.find(';')));
        for (std::string name; stream >> name;)
            text.add(characterOf(name));
        const int bits = std::stoi(line.substr(line.find(';') + 1));
        constexpr BaseDirection bases[] = {BaseDirection::FirstLetter, BaseDirection::LeftToRight,
                                           BaseDirection::RightToLeft};
        for (int bit = 0; bit < 3; ++bit) {
            if ((bits >> bit) % 2 == 0) continue;
            if (levelsOf(text, bases[bit], expected) == expected) continue;
            ADD_FAILURE() << line << " " << bit;
        }
    });
    if (!isThere) GTEST_SKIP() << "there is no unicode-data";
}

// Lines such as "÷ 0020 × 0308 ÷".
void expectBoundaries(const std::string& name, TextBoundary kind) {
    const bool isThere = readLines(name, [&](const std::string& line) {
        // Where Thai is broken a dictionary says, which the standard leaves to whoever has one.
        if (line.find("0E01") != std::string::npos) return;
        Text text;
        Offsets expected{0};
        std::istringstream stream(line);
        for (std::string word; stream >> word;) {
            if (word == "÷" && !text.utf8.empty()) expected.push_back(text.utf8.size());
            if (word != "÷" && word != "×")
                text.add(static_cast<char32_t>(std::stoul(word, nullptr, 16)));
        }
        EXPECT_EQ(test::testDevice().boundaries(text.utf8, kind), expected) << line;
    });
    if (!isThere) GTEST_SKIP() << "there is no unicode-data";
}

TEST(UnicodeData, GraphemesAreThoseOfTheStandard) {
    expectBoundaries("auxiliary/GraphemeBreakTest.txt", TextBoundary::Grapheme);
}

TEST(UnicodeData, LinesMayBeBrokenWhereTheStandardSays) {
    expectBoundaries("auxiliary/LineBreakTest.txt", TextBoundary::Line);
}

}  // namespace
}  // namespace kalim::gfx
