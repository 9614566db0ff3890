#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <string>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/ImportedFormat.h"
#include "kalimkit/codec/Sandbox.h"
#include "kalimkit/codec/imports/Library.h"
#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

namespace {

// Other programs have made these: 8 x 6 pixels, a red part at the left top on blue.
Bytes squareFile(const std::string& name) {
    std::ifstream file(KALIM_CORPORA "/imports/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Case {
    const char* name;
    const char* mediaType;
    int bitDepth = 8;
    gfx::Color first{240 / 255.0, 32 / 255.0, 16 / 255.0, 1};
    gfx::Color last{48 / 255.0, 96 / 255.0, 192 / 255.0, 1};
    double tolerance = 0;
};
const gfx::Color black{0, 0, 0, 1};
const gfx::Color white{1, 1, 1, 1};
const gfx::Color deepRed{75 / 255.0, 75 / 255.0, 75 / 255.0, 1};
const gfx::Color deepBlue{93 / 255.0, 93 / 255.0, 93 / 255.0, 1};
const Case cases[] = {
    {"square.ppm", "image/x-portable-anymap"},
    {"letters.ppm", "image/x-portable-anymap"},
    {"square.pbm", "image/x-portable-anymap", 1, black, white},
    {"deep.pgm", "image/x-portable-anymap", 16, deepRed, deepBlue},
    {"square.bmp", "image/bmp"},
    {"runs.bmp", "image/bmp"},
    {"square.gif", "image/gif"},
    {"interlaced.gif", "image/gif"},
    {"clear.gif", "image/gif", 8, {240 / 255.0, 32 / 255.0, 16 / 255.0, 1}, {0, 0, 0, 0}},
    {"square.tiff", "image/tiff"},
    {"turned.tiff", "image/tiff"},
    {.name = "square.avif", .mediaType = "image/avif", .tolerance = 4 / 255.0},
    {.name = "square.heic", .mediaType = "image/heic", .tolerance = 4 / 255.0},
};

void expectNear(const gfx::Color& got, const gfx::Color& wanted, double tolerance) {
    constexpr double rounding = 1e-3;
    const double difference =
        std::max({std::abs(got.red - wanted.red), std::abs(got.green - wanted.green),
                  std::abs(got.blue - wanted.blue), std::abs(got.alpha - wanted.alpha)});
    EXPECT_LE(difference, tolerance + rounding);
}

}  // namespace

TEST(Import, ReadsWhatOtherProgramsWriteHereAndSandboxed) {
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const Bytes file = squareFile(one.name);
        EXPECT_STREQ(mediaType(importedFormat(ByteSpan(file).first(16))), one.mediaType);
        for (const Decoder decoder : {Decoder(decode), Decoder(decodeSandboxed)}) {
            const DecodeResult picture = decoder(file, one.name, {});
            ASSERT_EQ(picture.error.value_or(""), "");
            EXPECT_EQ(picture.bitmap.size(), (gfx::PixelSize{8, 6}));
            ASSERT_TRUE(picture.imported);
            EXPECT_EQ(picture.imported->bitDepth, one.bitDepth);
            expectNear(picture.bitmap.colorAt(0, 0), one.first, one.tolerance);
            expectNear(picture.bitmap.colorAt(7, 5), one.last, one.tolerance);
            const bool isTurned = std::string(one.name) == "turned.tiff";
            EXPECT_EQ(picture.orientation,
                      isTurned ? gfx::ImageOrientation::Right : gfx::ImageOrientation::Up);
        }
    }
    EXPECT_TRUE(isOpaquePhoto(squareFile("square.heic")));
    EXPECT_FALSE(isOpaquePhoto(squareFile("square.tiff")));
}

// A file that ends early is no picture, and one that is damaged is one or an error.
TEST(Import, BearsWhatIsCutOffOrDamaged) {
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const Bytes file = squareFile(one.name);
        const bool isText = std::string(one.name) == "letters.ppm";
        const Bytes half(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2));
        EXPECT_TRUE(decodeSandboxed(half, "half").error);
        for (std::size_t at = 2; at < file.size(); at += file.size() / (isText ? 3 : 9)) {
            Bytes damaged = file;
            damaged[at] ^= 0xFF;
            const DecodeResult picture = decodeSandboxed(damaged, "damaged");
            EXPECT_EQ(picture.error.has_value(), picture.bitmap.isEmpty()) << at;
        }
        EXPECT_EQ(decode(file, "it", {.maxSide = 7}).error,
                  "it: 8 x 6 pixels are more than the 7 allowed for a side");
    }
    // Sizes that only a header claims take no memory.
    const std::string huge[] = {"P6 16000 16000 255\n", "P1\n16000 16000\n1 0"};
    for (const std::string& text : huge)
        EXPECT_EQ(errorOf({text.begin(), text.end()}), "photo: the PNM data end too early");
}

TEST(Import, NamesThePackageOfAMissingLibrary) {
    EXPECT_FALSE(Library("libnowhere.so.1").isWhole());
    EXPECT_EQ(Library::advice("AVIF", "libavif.so.15"), "to read AVIF files install libavif15");
}

}  // namespace kalim::codec::test
