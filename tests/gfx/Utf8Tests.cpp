#include "kalimkit/gfx/Utf8.h"

#include <gtest/gtest.h>

#include <vector>

namespace kalim::gfx {
namespace {

TEST(Utf8, MalformedBytesBecomeOneReplacementForEachMaximalPart) {
    const char32_t bad = replacementCharacter;
    const struct {
        std::string text;
        std::vector<CodePoint> expected;
    } cases[] = {
        {"aé漢😀", {{'a', 1}, {0xE9, 2}, {0x6F22, 3}, {0x1F600, 4}}},
        {std::string("\0", 1), {{0, 1}}},
        {"\xFF\x80", {{bad, 1}, {bad, 1}}},
        // Cut short, by another character and by the end.
        {"\xE6\xBC!", {{bad, 2}, {'!', 1}}},
        {"\xF0\x9F\x98", {{bad, 3}}},
        // An overlong slash, a surrogate, a value above 10FFFF.
        {"\xC0\xAF", {{bad, 1}, {bad, 1}}},
        {"\xED\xA0\x80", {{bad, 1}, {bad, 1}, {bad, 1}}},
        {"\xF4\x90\x80\x80", {{bad, 1}, {bad, 1}, {bad, 1}, {bad, 1}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::vector<CodePoint> read;
        for (std::size_t offset = 0; offset < c.text.size(); offset += read.back().byteCount) {
            read.push_back(decodeUtf8(c.text, offset));
        }
        EXPECT_EQ(c.expected, read);
    }
}

TEST(Utf8, EncodesEveryLength) {
    std::string text;
    for (const char32_t value : {0x41, 0xE9, 0x6F22, 0x1F600, 0xD800, 0x110000}) {
        appendUtf8(text, value);
    }
    EXPECT_EQ("Aé漢😀\uFFFD\uFFFD", text);
}

}  // namespace
}  // namespace kalim::gfx
