#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/AddedFonts.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/backend/cairo/PangoText.h"
#include "kalimkit/backend/cairo/TextDivision.h"
#include "kalimkit/gfx/text/TextLayout.h"
#include "tests/backend/device/Canvas.h"
#include "tests/support/RecordingDevice.h"

// What Cairo does beyond what every device must do.

namespace kalim::test {

namespace {

// The device is gone, and the font libraries' memory with it, before leaks are looked for.
class CairoEnvironment : public testing::Environment {
public:
    gfx::Device& device() {
        if (!_device) _device = gfx::CairoDevice::make();
        return *_device;
    }
    void TearDown() override {
        _device.reset();
        gfx::CairoDevice::releaseFontCaches();
    }

private:
    std::shared_ptr<gfx::Device> _device;
};

// GoogleTest owns it.
CairoEnvironment* const environment =
    static_cast<CairoEnvironment*>(testing::AddGlobalTestEnvironment(new CairoEnvironment));

}  // namespace

gfx::Device& testDevice() {
    return environment->device();
}

// Small blurs are exact, large ones three boxes.
double shadowTolerance(double sigma) {
    return sigma < 6 ? 1.5 : 4;
}

double widthTolerance() {
    return 0.05;
}

double clipTolerance() {
    return 0;
}

bool castsShadowsOfOutlinedText() {
    return true;
}

bool keepsLongPictures() {
    return true;
}

}  // namespace kalim::test

namespace kalim::gfx {
namespace {

using test::Canvas;

TEST(CairoContext, AntialiasingCanBeOffForAnyShape) {
    Canvas canvas(20, 20);
    canvas.context().setAntialias(false);
    canvas.context().fillEllipse({1, 1, 17, 17});
    const BitmapRef pixels = canvas.pixels();
    for (int i = 0; i < 400; ++i) {
        EXPECT_EQ(0, test::alphaAt(*pixels, i % 20, i / 20) % 255) << i;
    }
}

TEST(CairoRaster, StrongReductionTakesTheAverageOfExactlyThePixelsBelow) {
    Bitmap row(8, 1);
    const int greys[] = {0, 80, 0, 160, 255, 255, 1, 0};
    for (int x = 0; x < 8; ++x) {
        const double grey = greys[x] / 255.0;
        row.setColorAt(x, 0, {grey, grey, grey, 1});
    }
    Canvas canvas(2, 1);
    canvas.context().setInterpolation(Interpolation::High);
    const ImageRef image = test::testDevice().makeImage(row, 1, ImageOrientation::Up);
    canvas.context().drawImage(*image, {0, 0, 2, 1});
    EXPECT_EQ("#3C3C3CFF", canvas.at(0, 0));
    EXPECT_EQ("#808080FF", canvas.at(1, 0));
}

TEST(CairoSurface, PixelsCanBeReadInPlace) {
    Canvas canvas(2, 2);
    canvas.context().setFillColor({0, 0, 1, 1});
    canvas.context().fillRect({1, 1, 1, 1});
    const std::uint8_t* const pixels = CairoDevice::pixels(canvas.surface());
    EXPECT_EQ(0, std::memcmp(pixels, canvas.pixels()->data(), 16));
    EXPECT_EQ(255, pixels[12]);
    test::RecordingDevice other;
    EXPECT_EQ(nullptr, CairoDevice::pixels(*other.makeSurface({2, 2}, 1, false)));
}

TEST(CairoSurface, OutlivesItsDevice) {
    std::shared_ptr<Device> device = CairoDevice::make();
    const auto surface = device->makeSurface({20, 20}, 1, false);
    device.reset();
    surface->context().drawText("漢", {0, 18}, {.family = "", .size = 20});
    EXPECT_FALSE(test::inkBox(*surface->makeImage()->pixels()).isEmpty());
}

std::vector<std::uint8_t> bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The numbers are those of the file's tables: 2048 units to the em.
TEST(CairoDevice, AddedFontsSetTextsByTheirOwnUnits) {
    const std::shared_ptr<CairoDevice> device = CairoDevice::make();
    const Font font{.family = "", .size = 20.48};
    const std::vector<double> before = device->advances("iMwH", font);
    EXPECT_EQ("this is no font that can be read and drawn at every size",
              device->addFont({'n', 'o'}).problem);
    EXPECT_EQ(before, device->advances("iMwH", font));
    const AddedFont added =
        device->addFont(bytesOf("/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"));
    ASSERT_EQ("", added.problem);
    EXPECT_EQ("DejaVu Serif", added.family);
    const std::vector<double> advances = device->advances("iMwH", font);
    const double expected[] = {6.55, 20.97, 17.53, 17.86};
    ASSERT_EQ(std::size(expected), advances.size());
    for (std::size_t i = 0; i < advances.size(); ++i)
        EXPECT_NEAR(expected[i], advances[i], 0.01) << i;
    const LineMetrics metrics = device->lineMetrics(font);
    EXPECT_NEAR(19.01, metrics.ascent, 0.01);
    EXPECT_NEAR(4.83, metrics.descent, 0.01);
    EXPECT_NEAR(0, metrics.leading, 0.01);
    // What it lacks comes from the system's font.
    EXPECT_NEAR(20.48, device->advances("漢", font)[0], 0.01);
    EXPECT_EQ("this is a WOFF file; only TrueType and OpenType are read",
              device->addFont({'w', 'O', 'F', '2', 0}).problem);
}

TEST(CairoDevice, TextsAreMeasuredAnewOnceAFontIsAdded) {
    const std::shared_ptr<CairoDevice> device = CairoDevice::make();
    const Font font{.family = "", .size = 20.48};
    TextLayout layout(*device, "iMwH", font);
    ASSERT_EQ("",
              device->addFont(bytesOf("/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf")).problem);
    layout.setFont(font);
    EXPECT_NEAR(62.91, layout.size().width, 0.05);
}

TEST(PangoText, WhatIsAskedForAgainAndAgainIsShapedOnce) {
    PangoText texts;
    const Font font{.family = "", .size = 12};
    const auto shaped = texts.shape("again", font);
    for (int i = 0; i < 600; ++i) {
        texts.shape(std::to_string(i), font);
        EXPECT_EQ(texts.shape("again", font), shaped) << i;
    }
}

// Whatever is changed of a text, and wherever.
TEST(TextDivision, ALongTextIsDividedInPartsAsItIsAsAWhole) {
    const std::string pieces[] = {"word ", "a b ",   "字漢字", "。 ",
                                  "(x) ",  "สวัสดี",   "अक्षत ",  "e\u0301",
                                  "אב ",   "12.5",   "“q” ",   "👩‍👩‍👧",
                                  "🇫🇷🇯🇵",  "\u200D", "\xFF",   "한글 "};
    unsigned noise = 5;
    const auto next = [&noise](std::size_t below) {
        noise = noise * 1664525U + 1013904223U;
        return (noise >> 8U) % below;
    };
    std::string text;
    while (text.size() < 15000)
        text += pieces[next(std::size(pieces))];
    PangoLanguage* const language = pango_language_from_string("zh-cn");
    TextDivision division;
    for (int i = 0; i < 150; ++i) {
        division.divide(text, language);
        const MendedText mended(text);
        ASSERT_EQ(division.offsets(), mended.offsets) << i;
        std::vector<PangoLogAttr> expected(mended.offsets.size() + 1);
        pango_get_log_attrs(mended.utf8.data(), static_cast<int>(mended.utf8.size()), -1, language,
                            expected.data(), static_cast<int>(expected.size()));
        for (std::size_t k = 0; k < expected.size(); ++k) {
            const PangoLogAttr& found = division.attributes()[k];
            const PangoLogAttr& wanted = expected[k];
            // Nobody asks for line breaks within a grapheme.
            const bool isSame =
                found.is_cursor_position == wanted.is_cursor_position &&
                (found.is_line_break == wanted.is_line_break || !wanted.is_cursor_position) &&
                found.is_word_start == wanted.is_word_start &&
                found.is_word_end == wanted.is_word_end;
            ASSERT_TRUE(isSame) << i << " " << k;
        }
        const std::size_t at = i % 10 == 9 ? text.size() - 1 - next(20) : next(text.size());
        text.replace(at, next(3) == 0 ? next(30) : 0, pieces[next(std::size(pieces))]);
    }
}

TEST(AddedFonts, EachFaceOfACollectionIsOfItsOwnFamily) {
    AddedFonts fonts;
    ASSERT_EQ("", fonts.add(bytesOf("/usr/share/fonts/truetype/wqy/wqy-microhei.ttc")).problem);
    EXPECT_EQ((std::vector<std::string>{"WenQuanYi Micro Hei (added)",
                                        "WenQuanYi Micro Hei Mono (added)"}),
              fonts.families());
    EXPECT_EQ("WenQuanYi Micro Hei Mono (added)", fonts.named("WenQuanYi Micro Hei Mono"));
}

}  // namespace
}  // namespace kalim::gfx
