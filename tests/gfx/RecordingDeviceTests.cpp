#include "tests/support/RecordingDevice.h"

#include <gtest/gtest.h>

namespace kalim::test {
namespace {

TEST(RecordingDevice, MeasuresTextByItsGraphemes) {
    RecordingDevice device;
    const gfx::Font font{.family = "", .size = 20};
    EXPECT_EQ((std::vector<double>{10, 10, 20}), device.advances("ae\u0301漢", font));
    EXPECT_EQ((gfx::LineMetrics{16, 4, 2}), device.lineMetrics(font));
    using Offsets = std::vector<std::size_t>;
    EXPECT_EQ((Offsets{0, 1, 4, 7}), device.boundaries("ae\u0301漢", gfx::TextBoundary::Grapheme));
    EXPECT_EQ((Offsets{0, 2, 4, 6}), device.boundaries("ab, cd", gfx::TextBoundary::Word));
    EXPECT_EQ((Offsets{0, 3, 5, 8, 11}), device.boundaries("ab cd漢字", gfx::TextBoundary::Line));
    EXPECT_EQ((Offsets{0}), device.boundaries("", gfx::TextBoundary::Line));
}

TEST(RecordingDevice, KnowsItsSurfacesAndWhatWasDrawn) {
    RecordingDevice device;
    EXPECT_EQ(nullptr, device.makeSurface({0, 5}, 1, true));
    auto first = device.makeSurface({10, 5}, 2, true);
    const auto second = device.makeSurface({1, 1}, 1, false);
    first->context().fillRect({0, 0, 1, 1});
    EXPECT_EQ(1U, RecordingDevice::recording(*first).takeLines().size());
    EXPECT_EQ((gfx::PixelSize{20, 10}), first->makeImage()->pixels()->size());
    EXPECT_EQ((gfx::Size{10, 5}), first->makeImage()->size());
    first.reset();
    EXPECT_EQ((std::vector<std::shared_ptr<gfx::Surface>>{second}), device.surfaces());
}

}  // namespace
}  // namespace kalim::test
