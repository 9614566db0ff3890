#include "kalimkit/codec/Saving.h"

#include <gtest/gtest.h>
#include <lcms2.h>
#include <png.h>
#include <webp/decode.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/EncodeSteps.h"
#include "kalimkit/codec/FileColors.h"
#include "kalimkit/image/UprightBitmap.h"
#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

namespace {

constexpr int width = 40;
constexpr int height = 24;
constexpr gfx::PixelRect drawing{10, 6, 12, 8};

Bytes makeProfile(const cmsCIExyYTRIPLE& primaries, double gamma) {
    const cmsCIExyY white{0.3127, 0.3290, 1};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    const cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsFreeToneCurve(curve);
    cmsCloseProfile(profile);
    return bytes;
}

Bytes displayP3() {
    static const Bytes profile =
        makeProfile({{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, 2.2);
    return profile;
}

Bytes adobeRgb() {
    static const Bytes profile =
        makeProfile({{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}, 2.19921875);
    return profile;
}

// Rows of red, green, blue and alpha, or as many of them as there are channels. Colours of pixels
// that nobody sees are among them.
Bytes makeSamples(int channels) {
    Bytes samples;
    std::uint32_t state = 7;
    for (int i = 0; i < width * height; ++i) {
        for (int channel = 0; channel < channels; ++channel) {
            state = state * 1664525 + 1013904223;
            const bool isAlpha = channel == channels - 1 && channels % 2 == 0;
            const auto value = static_cast<std::uint8_t>(state >> 24U);
            samples.push_back(isAlpha && i % 3 == 0 ? 255 : isAlpha && i % 7 == 0 ? 0 : value);
        }
    }
    return samples;
}

Bytes pngOf(int colorType, const Bytes& profile, int channels) {
    return makePng({.width = width,
                    .height = height,
                    .colorType = colorType,
                    .rows = makeSamples(channels),
                    .profile = profile});
}

Bytes makeLosslessWebp(const Bytes& profile) {
    const Bytes rgba = makeSamples(4);
    gfx::Bitmap bitmap(width, height);
    for (std::size_t i = 0; i < rgba.size(); ++i)
        bitmap.data()[i] = rgba[i % 4 == 3 ? i : i / 4 * 4 + 2 - i % 4];
    constexpr std::uint8_t profileAndAlpha = 0x30;
    return makeWebp(concatenated(concatenated(makeCanvasChunk(profileAndAlpha, width, height),
                                              makeRiffChunk("ICCP", profile)),
                                 makeLosslessChunk(bitmap)));
}

// Read by the libraries alone: blue, green, red, straight alpha.
gfx::Bitmap samplesOf(const Bytes& file) {
    gfx::Bitmap bitmap(width, height);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, file.data(), file.size())) {
        image.format = PNG_FORMAT_BGRA;
        bitmap = gfx::Bitmap(static_cast<int>(image.width), static_cast<int>(image.height));
        png_image_finish_read(&image, nullptr, bitmap.data(), 0, nullptr);
        return bitmap;
    }
    WebPDecodeBGRAInto(file.data(), file.size(), bitmap.data(), bitmap.byteCount(), 4 * width);
    return bitmap;
}

// A picture's file, and the picture with a drawing.
struct Work {
    explicit Work(const Bytes& bytes) : file(bytes) {
        const DecodeResult decoded = decode(file, "photo");
        EXPECT_EQ(decoded.error, std::nullopt);
        upright = uprightBitmap(decoded.bitmap, decoded.orientation);
        result = upright;
        source.file = file;
        source.pixels = &upright;
        source.part = {0, 0, upright.width(), upright.height()};
    }
    void draw(const Bytes& bgra, const gfx::PixelRect& rect = drawing) {
        for (int y = rect.y; y < rect.y + rect.height; ++y) {
            for (int x = rect.x; x < rect.x + rect.width; ++x)
                std::ranges::copy(bgra, result.row(y) + 4 * x);
        }
    }
    SavedPicture save(FileFormat format) const {
        SavedPicture saved = savePicture(result, source, {format, {}, Metadata::Safe});
        EXPECT_EQ(saved.error, std::nullopt);
        return saved;
    }

    Bytes file;
    gfx::Bitmap upright;
    gfx::Bitmap result;
    SavingSource source;
};

bool isDrawn(int x, int y) {
    return x >= drawing.x && x < drawing.x + drawing.width && y >= drawing.y &&
           y < drawing.y + drawing.height;
}

// Pixels outside of the drawing that are not the same.
int differences(const gfx::Bitmap& first, const gfx::Bitmap& second) {
    EXPECT_EQ(first.size(), second.size());
    int count = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const auto at = [x, y](const gfx::Bitmap& bitmap) { return bitmap.row(y) + 4 * x; };
            if (!isDrawn(x, y) && !std::equal(at(first), at(first) + 4, at(second))) ++count;
        }
    }
    return count;
}

void expectDrawn(const Bytes& file, const Bytes& bgra, const std::string& what) {
    const DecodeResult decoded = decode(file, what);
    ASSERT_EQ(decoded.error, std::nullopt);
    const std::uint8_t* const pixel = decoded.bitmap.row(drawing.y) + 4 * drawing.x;
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(pixel[i], bgra[i], 2) << what << " byte " << i;
}

const Bytes red{0, 0, 255, 255};
const Bytes halfGreen{0, 128, 0, 128};

}  // namespace

TEST(Saving, WhatNothingCoversKeepsItsSamplesAndDrawingsAreConverted) {
    struct Case {
        std::string what;
        Bytes file;
        FileFormat format;
        Bytes profile;
    };
    using enum FileFormat;
    const Bytes srgb = makeSrgbProfile();
    const Case cases[] = {
        {"P3", pngOf(PNG_COLOR_TYPE_RGB, displayP3(), 3), Png, displayP3()},
        {"P3, transparent", pngOf(PNG_COLOR_TYPE_RGBA, displayP3(), 4), Png, displayP3()},
        {"Adobe RGB", pngOf(PNG_COLOR_TYPE_RGBA, adobeRgb(), 4), Png, adobeRgb()},
        {"sRGB", pngOf(PNG_COLOR_TYPE_RGBA, srgb, 4), Png, srgb},
        {"no profile", pngOf(PNG_COLOR_TYPE_RGBA, {}, 4), Png, {}},
        {"broken profile", makeLosslessWebp(Bytes(500, 7)), Png, {}},
        {"WebP in P3", makeLosslessWebp(displayP3()), Webp, displayP3()},
        {"WebP in Adobe RGB as PNG", makeLosslessWebp(adobeRgb()), Png, adobeRgb()},
    };
    for (const auto& [what, file, format, profile] : cases) {
        for (const Bytes& color : {red, halfGreen}) {
            Work work(file);
            work.draw(color);
            const SavedPicture saved = work.save(format);
            EXPECT_EQ(differences(samplesOf(saved.bytes), samplesOf(file)), 0) << what;
            expectDrawn(saved.bytes, color, what);
            EXPECT_EQ(colorProfile(saved.bytes), profile) << what;
            EXPECT_EQ(saved.encodedAnew, "") << what;
        }
    }
}

TEST(Saving, AJpegKeepsItsProfileAndItsSamplesInEveryFormat) {
    const Work pattern(pngOf(PNG_COLOR_TYPE_RGB, {}, 3));
    Bytes file;
    ASSERT_EQ(encodeJpeg(BitmapRows(pattern.upright), displayP3(), 95, file), std::nullopt);
    Work work(file);
    work.draw(red);
    const gfx::Bitmap before = rawPicture(file).bitmap;
    const SavedPicture png = work.save(FileFormat::Png);
    EXPECT_EQ(differences(samplesOf(png.bytes), before), 0);
    EXPECT_EQ(colorProfile(png.bytes), displayP3());
    expectDrawn(png.bytes, red, "as PNG");
    // The whole drawing, without colours that are sampled beyond it.
    work.draw(red, {8, 0, 16, 16});
    const SavedPicture jpeg = work.save(FileFormat::Jpeg);
    const gfx::Bitmap after = rawPicture(jpeg.bytes).bitmap;
    const auto rowsBelow = [](const gfx::Bitmap& bitmap) {
        return Bytes(bitmap.row(16), bitmap.data() + bitmap.byteCount());
    };
    EXPECT_EQ(rowsBelow(after), rowsBelow(before));
    EXPECT_EQ(colorProfile(jpeg.bytes), displayP3());
    EXPECT_EQ(jpeg.encodedAnew, "");
    const gfx::Bitmap seen = decode(jpeg.bytes, "jpeg").bitmap;
    EXPECT_NEAR(seen.row(8)[4 * 16 + 2], 255, 4);
    EXPECT_NEAR(seen.row(8)[4 * 16 + 1], 0, 8);
}

TEST(Saving, ScreenshotsOfAPictureAndOtherFormatsTakeItsColours) {
    const Bytes file = pngOf(PNG_COLOR_TYPE_RGB, displayP3(), 3);
    Work work(file);
    work.source.pixels = nullptr;
    work.draw(red);
    for (const FileFormat format : {FileFormat::Png, FileFormat::Jpeg, FileFormat::Webp}) {
        const SavedPicture saved = work.save(format);
        EXPECT_EQ(colorProfile(saved.bytes), displayP3());
        EXPECT_EQ(saved.encodedAnew.empty(), format == FileFormat::Png) << saved.encodedAnew;
    }
    expectDrawn(work.save(FileFormat::Png).bytes, red, "without pixels");
}

TEST(Saving, GreyStaysGreyUntilColourIsDrawnAndSixteenBitsAreRounded) {
    Bytes rows;
    Bytes rounded;
    for (int i = 0; i < width * height; ++i) {
        const int value = i * 65535 / (width * height - 1);
        rows.push_back(static_cast<std::uint8_t>(value >> 8));
        rows.push_back(static_cast<std::uint8_t>(value));
        rounded.push_back(static_cast<std::uint8_t>((value * 255LL + 32767) / 65535));
    }
    for (const Bytes& profile : {Bytes(), makeLinearGreyProfile()}) {
        const Bytes file = makePng(
            {.width = width, .height = height, .bitDepth = 16, .rows = rows, .profile = profile});
        EXPECT_EQ(bitDepth(file), 16);
        for (const Bytes& color : {Bytes{90, 90, 90, 255}, red}) {
            Work work(file);
            work.draw(color);
            const SavedPicture saved = work.save(FileFormat::Png);
            constexpr std::size_t colorType = 25;
            EXPECT_EQ(saved.bytes[colorType], color == red ? PNG_COLOR_TYPE_RGB : 0);
            EXPECT_EQ(bitDepth(saved.bytes), 8);
            expectDrawn(saved.bytes, color, "grey");
            const gfx::Bitmap samples = rawPicture(saved.bytes).bitmap;
            int wrong = 0;
            for (int i = 0; i < width * height; ++i) {
                if (isDrawn(i % width, i / width)) continue;
                const std::uint8_t* const bgra = samples.data() + 4 * i;
                const std::uint8_t grey = rounded[static_cast<std::size_t>(i)];
                if (std::ranges::count(bgra, bgra + 3, grey) != 3) ++wrong;
            }
            EXPECT_EQ(wrong, 0);
            EXPECT_EQ(colorProfile(saved.bytes).empty(), profile.empty());
        }
    }
}

TEST(Saving, TurnedCutAndEnlargedResultsFindTheirSamples) {
    // Stored with its left side up.
    const Bytes file = withInserted(pngOf(PNG_COLOR_TYPE_RGBA, displayP3(), 4), 33,
                                    makeChunk("eXIf", makeExif(true, 6)));
    const gfx::Bitmap samples = uprightBitmap(samplesOf(file), gfx::ImageOrientation::Right);
    const gfx::ImageOrientation turns[] = {gfx::ImageOrientation::Up, gfx::ImageOrientation::Left,
                                           gfx::ImageOrientation::Down,
                                           gfx::ImageOrientation::Right};
    for (int quarterTurns = 0; quarterTurns < 4; ++quarterTurns) {
        Work work(file);
        ASSERT_EQ(work.upright.size(), samples.size());
        // A part, with an edge of three opaque pixels at its left and of two above.
        work.source.part = {4, 5, 15, 20};
        work.source.x = 3;
        work.source.y = 2;
        work.source.quarterTurns = quarterTurns;
        gfx::Bitmap result(18, 22);
        gfx::Bitmap expected(18, 22);
        for (int y = 0; y < 22; ++y) {
            for (int x = 0; x < 18; ++x) {
                const bool isEdge = x < 3 || y < 2;
                const std::size_t at = 4 * static_cast<std::size_t>(x + 1);
                const Bytes white(4, 255);
                const auto pixel = [&](const gfx::Bitmap& from) {
                    return isEdge ? white.data() : from.row(y + 3) + at;
                };
                std::copy_n(pixel(work.upright), 4, result.row(y) + 4 * x);
                std::copy_n(pixel(samples), 4, expected.row(y) + 4 * x);
            }
        }
        work.result = uprightBitmap(result, turns[quarterTurns]);
        const gfx::Bitmap saved = samplesOf(work.save(FileFormat::Png).bytes);
        EXPECT_EQ(saved, uprightBitmap(expected, turns[quarterTurns])) << quarterTurns;
    }
}

TEST(Saving, NothingOfWhatIsHiddenIsWritten) {
    for (const Bytes& profile : {displayP3(), Bytes()}) {
        Bytes samples = makeSamples(4);
        Bytes saved[2];
        for (Bytes& bytes : saved) {
            Work work(makePng({.width = width,
                               .height = height,
                               .colorType = PNG_COLOR_TYPE_RGBA,
                               .rows = samples,
                               .profile = profile}));
            work.source.hidden = {drawing};
            // The first file's secret happens to be what hides it.
            work.draw(Bytes(4, 0));
            bytes = work.save(FileFormat::Png).bytes;
            for (int y = drawing.y; y < drawing.y + drawing.height; ++y)
                std::fill_n(samples.begin() + 4 * (y * width + drawing.x), 4 * drawing.width, 0);
        }
        EXPECT_EQ(saved[0], saved[1]);
    }
}

TEST(Saving, WhatHasNoProfileSaysSrgb) {
    Work work(pngOf(PNG_COLOR_TYPE_RGB, {}, 3));
    for (const bool hasFile : {true, false}) {
        if (!hasFile) work.source = {};
        EXPECT_EQ(colorProfileName(work.save(FileFormat::Jpeg).bytes), "sRGB");
        EXPECT_EQ(colorProfileName(work.save(FileFormat::Webp).bytes), "sRGB");
        const Bytes png = work.save(FileFormat::Png).bytes;
        const std::string chunk = "sRGB";
        EXPECT_NE(std::ranges::search(png, chunk).begin(), png.end());
        EXPECT_EQ(work.save(FileFormat::Jpeg).bytes, work.save(FileFormat::Jpeg).bytes);
    }
}

}  // namespace kalim::codec::test
