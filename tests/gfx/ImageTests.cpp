#include "kalimkit/gfx/Image.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/RecordingDevice.h"

namespace kalim::gfx {
namespace {

// How the raster abc/def is to be seen under each orientation, with the number of the EXIF tag that
// means the same.
const struct {
    ImageOrientation orientation;
    int exif;
    const char* seen;
} orientations[] = {
    {ImageOrientation::Up, 1, "abc/def"},
    {ImageOrientation::UpMirrored, 2, "cba/fed"},
    {ImageOrientation::Down, 3, "fed/cba"},
    {ImageOrientation::DownMirrored, 4, "def/abc"},
    {ImageOrientation::LeftMirrored, 5, "ad/be/cf"},
    {ImageOrientation::Right, 6, "da/eb/fc"},
    {ImageOrientation::RightMirrored, 7, "fc/eb/da"},
    {ImageOrientation::Left, 8, "cf/be/ad"},
};

TEST(Image, OrientationsCarryEachPixelToItsPlace) {
    test::RecordingDevice device;
    for (const auto& c : orientations) {
        SCOPED_TRACE(testing::Message() << "EXIF " << c.exif);
        const ImageRef image = device.makeImage(Bitmap(3, 2), 0.5, c.orientation);
        const int width = exchangesSides(c.orientation) ? 2 : 3;
        const int height = 5 - width;
        EXPECT_EQ((Size{width * 2.0, height * 2.0}), image->size());
        const AffineTransform upright =
            uprightTransform(c.orientation, {width * 1.0, height * 1.0});
        std::string seen(static_cast<std::size_t>((width + 1) * height - 1), '/');
        for (int i = 0; i < 6; ++i) {
            const Point at = upright.apply(Point{i % 3 + 0.5, i / 3 + 0.5});
            seen.at(static_cast<std::size_t>(static_cast<int>(at.y) * (width + 1) +
                                             static_cast<int>(at.x))) = static_cast<char>('a' + i);
        }
        EXPECT_EQ(c.seen, seen);
    }
}

TEST(Image, UnusableScalesAndOrientationsCountAsPlain) {
    test::RecordingDevice device;
    EXPECT_EQ((Size{3, 2}), device.makeImage(Bitmap(3, 2), 0, ImageOrientation::Up)->size());
    EXPECT_TRUE(uprightTransform(static_cast<ImageOrientation>(8), {3, 2}).isIdentity());
}

TEST(Bitmap, KeepsColoursPremultipliedAndGivesThemStraight) {
    Bitmap bitmap(2, 1);
    bitmap.setColorAt(1, 0, {1, 0.5, 0, 0.5});
    const std::uint8_t* const pixel = bitmap.row(0) + 4;
    EXPECT_EQ(0, pixel[0]);
    EXPECT_EQ(64, pixel[1]);
    EXPECT_EQ(128, pixel[2]);
    EXPECT_EQ(128, pixel[3]);
    EXPECT_EQ("#FF800080", bitmap.colorAt(1, 0).hex());
    EXPECT_EQ("#00000000", bitmap.colorAt(0, 0).hex());
    EXPECT_TRUE(Bitmap(0, 5).isEmpty());
    EXPECT_EQ(0U, Bitmap(-1, 5).byteCount());
}

}  // namespace
}  // namespace kalim::gfx
