#include "kalimkit/codec/ExifOrientation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

using enum gfx::ImageOrientation;

TEST(ExifOrientation, ReadsTheEightValuesInBothByteOrders) {
    const std::pair<std::uint16_t, gfx::ImageOrientation> cases[] = {
        {1, Up},           {2, UpMirrored}, {3, Down},          {4, DownMirrored},
        {5, LeftMirrored}, {6, Right},      {7, RightMirrored}, {8, Left},
        {0, Up},           {9, Up},         {0x0600, Up}};
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
        EXPECT_EQ(exifOrientation(part), size < valueEnd ? Up : Right) << size;
    }
}

TEST(ExifOrientation, DamagedFieldsAreUpright) {
    const std::tuple<const char*, std::size_t, Bytes> damages[] = {
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
    for (const auto& [what, offset, bytes] : damages) {
        Bytes exif = makeExif(true, 6);
        std::copy(bytes.begin(), bytes.end(), exif.begin() + static_cast<std::ptrdiff_t>(offset));
        EXPECT_EQ(exifOrientation(exif), Up) << what;
    }
}

}  // namespace kalim::codec::test
