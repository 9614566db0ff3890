#include <gtest/gtest.h>

#include <string>

#include "kalimkit/codec/Decode.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

TEST(SmallestHost, WritesThePhotoWithItsArrow) {
    const TemporaryFolder folder;
    const std::string photo = std::string(KALIM_ROOT) + "/docs/photos/coffee.png";
    const ProgramRun run = runProgram(KALIM_EXAMPLE, {photo, "out.png"}, folder.path());
    ASSERT_EQ(run.status, 0) << run.errors;
    const codec::DecodeResult out = codec::decodeFile(folder.path() / "out.png");
    ASSERT_FALSE(out.error) << *out.error;
    EXPECT_EQ(out.bitmap.size(), (gfx::PixelSize{600, 400}));
    // Near the tip at (200, 420) in a photo that lies at y 292 to 552, at 20 pixels for 13 points.
    EXPECT_EQ(out.bitmap.colorAt(323, 181).hex(), "#00FF00FF");

    const ProgramRun lost = runProgram(KALIM_EXAMPLE, {"lost.png", "out.png"}, folder.path());
    EXPECT_EQ(lost.status, 2);
    EXPECT_NE(lost.errors.find("lost.png"), std::string::npos);
}

TEST(SmallestHost, StandsInTheReadmeAsItIs) {
    const std::string readme = readText(KALIM_ROOT "/README.md");
    EXPECT_NE(readme.find(readText(KALIM_ROOT "/examples/editor/main.cpp")), std::string::npos);
    const std::string extending = readText(KALIM_ROOT "/docs/extending.md");
    for (const char* const file : {"kind/Star.h", "kind/StarPen.h", "canvas/main.cpp"}) {
        const std::string text = readText(std::string(KALIM_ROOT "/examples/") + file);
        EXPECT_NE(extending.find(text), std::string::npos) << file;
    }
}

}  // namespace kalim::test
