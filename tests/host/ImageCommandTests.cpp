#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

class ImageCommand : public testing::Test {
protected:
    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "image");
        return runProgram(KALIM_COMMAND, arguments, folder.path());
    }
    gfx::Bitmap result(std::vector<std::string> arguments) const {
        arguments.push_back(photo);
        arguments.push_back("out.png");
        const ProgramRun done = run(std::move(arguments));
        EXPECT_EQ(done.status, 0) << done.errors;
        return codec::decodeFile(folder.path() / "out.png").bitmap;
    }

    TemporaryFolder folder;
    // 600 x 400.
    std::string photo = KALIM_ROOT "/docs/photos/coffee.png";
};

TEST_F(ImageCommand, WorksOnPixels) {
    const gfx::Bitmap source = codec::decodeFile(photo).bitmap;
    EXPECT_EQ(result({"fit", "--size", "300x300"}).size(), (gfx::PixelSize{300, 200}));
    EXPECT_EQ(result({"fit", "--size", "1200x900"}).size(), (gfx::PixelSize{600, 400}));
    EXPECT_EQ(result({"fit", "--size", "1200x900", "--enlarge"}).size(),
              (gfx::PixelSize{1200, 800}));
    const gfx::Bitmap part = result({"crop", "--rect", "100,50,30,20"});
    ASSERT_EQ(part.size(), (gfx::PixelSize{30, 20}));
    EXPECT_EQ(part.colorAt(29, 19), source.colorAt(129, 69));
    const gfx::Bitmap blocks = result({"pixelate", "--level", "25"});
    ASSERT_EQ(blocks.size(), source.size());
    EXPECT_EQ(blocks.colorAt(25, 50), blocks.colorAt(49, 74));
    EXPECT_NE(blocks.colorAt(49, 74), blocks.colorAt(50, 74));
}

TEST_F(ImageCommand, NamesWhatIsWrongAndWritesNothing) {
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };
    const Case cases[] = {
        {{"crop", "--rect", "900,0,10,10", photo, "out.png"}, "nothing of the picture is left"},
        {{"crop", "--rect", "1,2,3", photo, "out.png"}, "--rect: must be x,y,width,height"},
        {{"crop", "--rect", "1,2,3,0", photo, "out.png"}, "--rect: must be x,y,width,height"},
        {{"crop", photo, "out.png"}, "--rect"},
        {{"pixelate", "--level", "0", photo, "out.png"}, "--level"},
        {{"fit", "--size", "10", photo, "out.png"}, "--size: must be two sides"},
        {{"fit", "--size", "10x10", "lost.png", "out.png"}, "lost.png"},
        {{"fit", "--size", "10x10", photo, "out.heic"}, "out.heic"},
        {{"fit", "--size", "10x10", photo}, "OUT"},
        {{"sharpen", photo, "out.png"}, "sharpen"},
    };
    for (const Case& wrong : cases) {
        const ProgramRun done = run(wrong.arguments);
        EXPECT_EQ(done.status, 2) << wrong.complaint;
        EXPECT_NE(done.errors.find(wrong.complaint), std::string::npos) << done.errors;
        EXPECT_FALSE(std::filesystem::exists(folder.path() / "out.png")) << wrong.complaint;
    }
}

}  // namespace

}  // namespace kalim::test
