#include "kalimkit/codec/ExifOrientation.h"

#include <gtest/gtest.h>

#include <utility>

#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

using gfx::ImageOrientation;

TEST(ExifOrientation, ReadsTheEightValuesInBothByteOrders) {
    const std::pair<std::uint16_t, ImageOrientation> cases[] = {
        {1, ImageOrientation::Up},
        {2, ImageOrientation::UpMirrored},
        {3, ImageOrientation::Down},
        {4, ImageOrientation::DownMirrored},
        {5, ImageOrientation::LeftMirrored},
        {6, ImageOrientation::Right},
        {7, ImageOrientation::RightMirrored},
        {8, ImageOrientation::Left},
        {0, ImageOrientation::Up},
        {9, ImageOrientation::Up},
        {0x0600, ImageOrientation::Up},
    };
    for (const auto& [value, orientation] : cases) {
        EXPECT_EQ(exifOrientation(makeExif(false, value)), orientation) << value;
        EXPECT_EQ(exifOrientation(makeExif(true, value)), orientation) << value;
    }
}

TEST(ExifOrientation, ABlockThatIsCutOffIsUpright) {
    const Bytes whole = makeExif(true, 6);
    // The value's two bytes end 22 bytes into the directory's entries at offset 10.
    constexpr std::size_t valueEnd = 10 + 22;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        // A copy of its own, so that reading behind its end is noticed.
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(exifOrientation(part),
                  size < valueEnd ? ImageOrientation::Up : ImageOrientation::Right)
            << size;
    }
}

TEST(ExifOrientation, DamagedFieldsAreUpright) {
    struct Damage {
        const char* what;
        std::size_t offset;
        Bytes bytes;
    };
    const Damage damages[] = {
        {"mixed byte order", 0, {'M', 'I'}},
        {"no TIFF number", 2, {0, 43}},
        {"the directory is the header", 4, {0, 0, 0, 0}},
        {"the directory lies in the header", 4, {0, 0, 0, 4}},
        {"the directory lies far outside", 4, {0xFF, 0xFF, 0xFF, 0xFF}},
        {"the directory has no entries", 8, {0, 0}},
        {"the orientation is no SHORT", 24, {0, 4}},
        {"the orientation is a list", 26, {0, 0, 0, 2}},
        {"no orientation, and the next directory is this one",
         22,
         {1, 0x13, 0, 3, 0, 0, 0, 1, 0, 6, 0, 0, 0, 0, 0, 8}},
        {"more entries than the block holds, none of them the orientation",
         8,
         {0xFF, 0xFF, 1, 1, 0, 4, 0, 0, 0, 1, 0, 0, 2, 0x80, 1, 2}},
    };
    for (const Damage& damage : damages) {
        Bytes exif = makeExif(true, 6);
        std::copy(damage.bytes.begin(), damage.bytes.end(),
                  exif.begin() + static_cast<std::ptrdiff_t>(damage.offset));
        EXPECT_EQ(exifOrientation(exif), ImageOrientation::Up) << damage.what;
    }
}

}  // namespace kalim::codec::test
