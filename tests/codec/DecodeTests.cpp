#include "kalimkit/codec/Decode.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <tuple>

#include "kalimkit/codec/Encode.h"
#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

gfx::Bitmap gradient(int width, int height) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* const pixel = bitmap.row(y) + 4 * x;
            pixel[0] = static_cast<std::uint8_t>(3 * x);
            pixel[1] = static_cast<std::uint8_t>(5 * y);
            pixel[2] = static_cast<std::uint8_t>(200 - 2 * x - 3 * y);
            pixel[3] = 255;
        }
    }
    return bitmap;
}

Bytes pngOf(const gfx::Bitmap& bitmap) {
    Bytes file;
    EXPECT_EQ(encodePng(bitmap, file), std::nullopt);
    return file;
}

Bytes jpegOf(const gfx::Bitmap& bitmap) {
    Bytes file;
    EXPECT_EQ(encodeJpeg(bitmap, 95, file), std::nullopt);
    return file;
}

Bytes cutTo(const Bytes& file, std::size_t size) {
    return {file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)};
}

}  // namespace

TEST(Decode, PngOfEveryKindBecomesPremultipliedBlueGreenRedAlpha) {
    const std::tuple<const char*, PngRecipe, Bytes> cases[] = {
        {"palette of two bits with alpha, entries 2 1 0",
         {.width = 3,
          .bitDepth = 2,
          .colorType = PNG_COLOR_TYPE_PALETTE,
          .rows = {0b10'01'00'00},
          .palette = {10, 20, 30, 255, 100, 1, 70, 80, 90},
          .paletteAlpha = {255, 128}},
         {90, 80, 70, 255, 1, 50, 128, 128, 30, 20, 10, 255}},
        {"grey of one bit",
         {.width = 3, .bitDepth = 1, .rows = {0b101'00000}},
         {255, 255, 255, 255, 0, 0, 0, 255, 255, 255, 255, 255}},
        {"grey with a transparent value",
         {.width = 2, .rows = {40, 41}, .transparentGrey = 41},
         {40, 40, 40, 255, 0, 0, 0, 0}},
        {"grey of 16 bits is rounded, not cut",
         {.width = 2, .bitDepth = 16, .rows = {0x00, 0xFF, 0x80, 0x40}},
         {1, 1, 1, 255, 128, 128, 128, 255}},
        {"grey and alpha",
         {.width = 1, .colorType = PNG_COLOR_TYPE_GRAY_ALPHA, .rows = {200, 51}},
         {40, 40, 40, 51}},
        {"red, green, blue of 16 bits",
         {.width = 1,
          .bitDepth = 16,
          .colorType = PNG_COLOR_TYPE_RGB,
          .rows = {1, 1, 2, 2, 255, 255}},
         {255, 2, 1, 255}},
        {"alpha, interlaced; a half is rounded up",
         {.width = 1,
          .height = 3,
          .colorType = PNG_COLOR_TYPE_RGB_ALPHA,
          .interlaced = true,
          .rows = {255, 128, 0, 1, 9, 9, 9, 0, 1, 2, 3, 255}},
         {0, 1, 1, 1, 0, 0, 0, 0, 3, 2, 1, 255}},
    };
    for (const auto& [what, recipe, pixels] : cases)
        EXPECT_EQ(pixelsOf(makePng(recipe)), pixels) << what;
}

TEST(Decode, JpegOfEveryColourSpaceBecomesOpaqueBlueGreenRed) {
    const std::tuple<const char*, JpegRecipe, Bytes> cases[] = {
        {"grey", {JCS_GRAYSCALE, JCS_GRAYSCALE, {90}}, {90, 90, 90, 255}},
        {"luminance and chrominance", {JCS_RGB, JCS_YCbCr, {200, 100, 50}}, {50, 100, 200, 255}},
        {"progressive", {JCS_RGB, JCS_YCbCr, {200, 100, 50}, true}, {50, 100, 200, 255}},
        {"red, green, blue", {JCS_RGB, JCS_RGB, {200, 100, 50}}, {50, 100, 200, 255}},
        // Ink 51/255 cyan, 102/255 magenta, none yellow, 51/255 black: paper is 204.
        {"ink", {JCS_CMYK, JCS_CMYK, {51, 102, 0, 51}}, {204, 122, 163, 255}},
        {"missing ink, as Adobe's programs write it",
         {JCS_CMYK, JCS_CMYK, {204, 153, 255, 204}, false, true},
         {204, 122, 163, 255}},
        {"missing ink by luminance",
         {JCS_CMYK, JCS_YCCK, {204, 153, 255, 204}, false, true},
         {204, 122, 163, 255}},
    };
    for (const auto& [what, recipe, pixel] : cases) {
        const Bytes pixels = pixelsOf(makeJpeg(recipe));
        ASSERT_EQ(pixels.size(), 16U * 16 * 4) << what;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            ASSERT_NEAR(pixels[i], pixel[i % 4], 2) << what << " byte " << i;
    }
}

TEST(Decode, AJpegKeepsEveryPixelInItsPlace) {
    const gfx::Bitmap original = gradient(40, 30);
    const DecodeResult jpeg = decode(jpegOf(original), "photo");
    ASSERT_EQ(jpeg.bitmap.size(), original.size());
    for (std::size_t i = 0; i < original.byteCount(); ++i) {
        ASSERT_NEAR(jpeg.bitmap.data()[i], original.data()[i], 10) << "byte " << i;
    }
}

TEST(Decode, TakesTheOrientationOfTheFile) {
    const gfx::Bitmap picture = gradient(4, 3);
    constexpr std::size_t afterHeaderChunk = 8 + 25;
    constexpr std::size_t endChunkSize = 12;
    const Bytes png = pngOf(picture);
    const Bytes chunk = makeChunk("eXIf", makeExif(true, 8));
    EXPECT_EQ(decode(withInserted(png, afterHeaderChunk, chunk), "photo").orientation,
              gfx::ImageOrientation::Left);
    EXPECT_EQ(decode(withInserted(png, png.size() - endChunkSize, chunk), "photo").orientation,
              gfx::ImageOrientation::Left);
    EXPECT_EQ(decode(png, "photo").orientation, gfx::ImageOrientation::Up);

    const Bytes exif = concatenated(bytesOf(std::string("Exif\0\0", 6)), makeExif(false, 6));
    Bytes marker{0xFF, 0xE1, 0, static_cast<std::uint8_t>(exif.size() + 2)};
    // Another APP1 marker, as XMP uses it, comes first and is passed over.
    const Bytes other{0xFF, 0xE1, 0, 8, 'h', 't', 't', 'p', ':', '/'};
    marker = concatenated(other, concatenated(marker, exif));
    const DecodeResult jpeg = decode(withInserted(jpegOf(picture), 2, marker), "photo");
    EXPECT_EQ(jpeg.orientation, gfx::ImageOrientation::Right);
    EXPECT_EQ(jpeg.bitmap.size(), picture.size());
}

TEST(Decode, DataThatAreCutOffAreAnErrorUnlessAllPixelsAreThere) {
    expectErrorForEveryCut(pngOf(gradient(9, 7)), "PNG");
    const Bytes jpegs[] = {
        jpegOf(gradient(40, 30)),
        makeJpeg({JCS_RGB, JCS_YCbCr, {200, 100, 50}, true}),
        makeJpeg({.inputSpace = JCS_RGB,
                  .fileSpace = JCS_YCbCr,
                  .pixel = {200, 100, 50},
                  .coloursApart = true}),
    };
    for (const Bytes& file : jpegs) {
        const std::size_t endMarker = file.size() - 2;
        EXPECT_EQ(pixelsOf(cutTo(file, endMarker)), pixelsOf(file));
        EXPECT_EQ(pixelsOf(cutTo(file, endMarker + 1)), pixelsOf(file));
        expectErrorForEveryCut(file, "JPEG", endMarker);
    }
}

TEST(Decode, DamagedDataAreAnError) {
    const Bytes png = pngOf(gradient(9, 7));
    // Behind the header, the size and the name of the chunk that says sRGB, without which the
    // picture is the same.
    constexpr std::size_t spareable = 33 + 8;
    for (std::size_t i = 0; i < png.size(); ++i) {
        if (i == spareable) i += 5;
        Bytes damaged = png;
        damaged[i] ^= 0x55;
        EXPECT_NE(errorOf(damaged), "none") << i;
    }
    // Half of the picture is missing, but the end marker is there.
    const Bytes jpeg = jpegOf(gradient(40, 30));
    Bytes half(jpeg.begin(), jpeg.end() - 300);
    half.insert(half.end(), {0xFF, 0xD9});
    EXPECT_EQ(errorOf(half), "photo: the JPEG data are damaged");
    expectPictureOrErrorForEveryDamage(jpeg, 3);
}

TEST(Decode, HoldsTheSizeAgainstTheLimits) {
    const Bytes jpeg = jpegOf(gradient(20, 10));
    EXPECT_EQ(errorOf(jpeg, {.maxSide = 20, .maxPixels = 200}), "none");
    EXPECT_EQ(errorOf(jpeg, {.maxSide = 19}),
              "photo: 20 x 10 pixels are more than the 19 allowed for a side");
    EXPECT_EQ(errorOf(jpeg, {.maxPixels = 199}),
              "photo: 20 x 10 pixels are more than the 0 megapixels allowed");
}

TEST(Decode, NamesWhatCannotBeRead) {
    using std::string_literals::operator""s;
    const std::pair<std::string, std::string> cases[] = {
        {"", "photo: the file is empty"},
        {"just words",
         "photo: not a picture that can be read (JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF or "
         "HEIC)"},
        {"\xFF\xD8",
         "photo: not a picture that can be read (JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF or "
         "HEIC)"},
        {"\0\0\0\xC"
         "JXL \r\n\x87\n"s,
         "photo: JPEG XL pictures are not supported"},
        {"RIFF\x10\0\0\0"s + "WAVEfmt ",
         "photo: not a picture that can be read (JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF or "
         "HEIC)"},
        {"GIF89a", "photo: the GIF data end too early"},
        {"BM\x99\1\0\0\0\0\0\0\x36\0\0\0\x28\0"s, "photo: the BMP data end too early"},
    };
    for (const auto& [file, message] : cases)
        EXPECT_EQ(errorOf(bytesOf(file)), message);
    EXPECT_EQ(decodeFile("/nowhere/photo.jpg").error,
              "/nowhere/photo.jpg: No such file or directory");
    EXPECT_EQ(decodeFile("/").error, "/: Is a directory");
}

}  // namespace kalim::codec::test
