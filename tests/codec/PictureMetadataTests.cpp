#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/PersonalTraces.h"
#include "kalimkit/codec/PngText.h"
#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

Bytes smallPng() {
    return makePng({.colorType = PNG_COLOR_TYPE_GRAY, .rows = {0}});
}

PersonalTraces tracesOfXmp(const std::string& xml) {
    return tracesInXmp(bytesOf("<x:xmpmeta><rdf:Description " + xml + "</x:xmpmeta>"));
}

}  // namespace

TEST(PngText, IsFoundAgainAndFoundDamaged) {
    const Bytes plain = smallPng();
    Bytes file = plain;
    const std::string text = "{\"text\":\"你好\"}" + std::string(100'000, 'x');
    ASSERT_FALSE(addPngText(file, "kalimkit", text));
    EXPECT_LT(file.size(), plain.size() + 1000);
    EXPECT_EQ(errorOf(file), "none");
    const auto found = findPngText(file, "kalimkit", text.size());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->text, text);
    EXPECT_FALSE(findPngText(plain, "kalimkit", 100));
    EXPECT_FALSE(findPngText(file, "kalim", 100));
    EXPECT_FALSE(findPngText(bytesOf("kalimkit"), "kalimkit", 100));
    EXPECT_TRUE(findPngText(file, "kalimkit", text.size() - 1)->error);
    // Behind the start of the chunk, the length and the letters come the keyword and a zero.
    const std::size_t start = plain.size() - 12;
    for (std::size_t at = start + 8 + 9; at < file.size() - 12; ++at) {
        Bytes damaged = file;
        damaged[at] ^= 0x10;
        EXPECT_TRUE(findPngText(damaged, "kalimkit", text.size())->error) << at;
        damaged = file;
        damaged.resize(at);
        EXPECT_TRUE(findPngText(damaged, "kalimkit", text.size())->error) << at;
    }
    // One that is not packed is read as well.
    const Bytes chunk = makeChunk("iTXt", bytesOf(std::string_view("a\0\0\0de\0\0hello", 13)));
    EXPECT_EQ(findPngText(withInserted(plain, start, chunk), "a", 100)->text, "hello");
    Bytes noPicture = bytesOf("no picture");
    EXPECT_TRUE(addPngText(noPicture, "kalimkit", text));
}

TEST(PersonalTraces, OfXmpAreItsPropertiesWithAValue) {
    struct Case {
        const char* xml;
        PersonalTraces traces;
    };
    const Case cases[] = {
        {R"(exif:GPSLatitude="52,30N"/>)", {.place = true}},
        {R"(photoshop:City=' '/>)", {}},
        {"><photoshop:City>Berlin</photoshop:City>", {.place = true}},
        {"><photoshop:City> </photoshop:City>Berlin", {}},
        {"><dc:creator><rdf:Seq><rdf:li>Anna</rdf:li></rdf:Seq></dc:creator>", {.owner = true}},
        {"><dc:creator><rdf:Seq/></dc:creator><dc:title>Anna</dc:title>", {}},
        {R"(aux:SerialNumber="7" aux:OwnerName="A"/>)", {.owner = true, .serialNumber = true}},
        {R"(xmp:CreatorTool="Tool"><!-- <dc:creator>A</dc:creator> -->)", {}},
        {R"(= == "a" dc:creator= "A)", {.owner = true}},
    };
    for (const Case& one : cases)
        EXPECT_EQ(tracesOfXmp(one.xml), one.traces) << one.xml;
    // Two bytes a letter; and nothing in a depth that no reader could bear with a call for each.
    const std::string narrow = "<a:City>Berlin</a:City>";
    Bytes wide;
    for (const char letter : narrow)
        wide.insert(wide.end(), {0, static_cast<std::uint8_t>(letter)});
    EXPECT_EQ(tracesInXmp(wide), PersonalTraces{.place = true});
    std::string deep;
    for (int i = 0; i < 200'000; ++i)
        deep += "<City>";
    EXPECT_EQ(tracesInXmp(bytesOf(deep)), PersonalTraces{});
}

TEST(PersonalTraces, ComeOfWholeBlocksHoweverDamaged) {
    const Bytes iptc =
        bytesOf(std::string_view("8BIM\x04\x04\0\0\0\0\0\x0A\x1C\2\x5A\0\5Paris", 22));
    EXPECT_EQ(tracesInIptc(iptc), PersonalTraces{.place = true});
    Bytes file = makeJpeg({.inputSpace = JCS_RGB, .fileSpace = JCS_YCbCr, .pixel = {1, 2, 3}});
    Bytes segment = bytesOf(std::string_view("\xFF\xED\0\x26Photoshop 3.0\0", 18));
    file = withInserted(file, 2, concatenated(segment, iptc));
    EXPECT_EQ(personalTraces(file), PersonalTraces{.place = true});
    const Bytes exif = concatenated(bytesOf(std::string_view("\xFF\xE1\0\x34"
                                                             "Exif\0\0",
                                                             10)),
                                    makeExif(true, 6));
    file = withInserted(file, 2, exif);
    for (std::size_t at = 0; at < 200; ++at) {
        for (const int value : {0, 1, 0x7F, 0xFF}) {
            Bytes damaged = file;
            damaged[at] = static_cast<std::uint8_t>(value);
            personalTraces(damaged);
            damaged.resize(at);
            personalTraces(damaged);
        }
    }
}

TEST(ColorProfile, TellsItsName) {
    const Bytes profile = makeSrgbProfile();
    const Bytes png = makePng(
        {.colorType = PNG_COLOR_TYPE_GRAY, .rows = {0}, .profile = makeLinearGreyProfile()});
    const Bytes jpeg = makeJpeg(
        {.inputSpace = JCS_RGB, .fileSpace = JCS_YCbCr, .pixel = {1, 2, 3}, .profile = profile});
    EXPECT_EQ(colorProfileName(jpeg), "sRGB built-in");
    EXPECT_EQ(colorProfileName(png), "gray built-in");
    EXPECT_EQ(colorProfileName(smallPng()), std::nullopt);
    EXPECT_EQ(colorProfileName(makeWebp(makeRiffChunk("ICCP", bytesOf("broken")))), std::nullopt);
}

}  // namespace kalim::codec::test
