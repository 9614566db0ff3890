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
    const gfx::Bitmap patch = result({"pixelate", "--level", "20", "--rect", "110,50,40,30"});
    EXPECT_EQ(patch.colorAt(110, 50), patch.colorAt(129, 69));
    EXPECT_EQ(patch.colorAt(109, 60), source.colorAt(109, 60));
    EXPECT_EQ(patch.colorAt(150, 60), source.colorAt(150, 60));
    EXPECT_NE(patch.colorAt(115, 55), source.colorAt(115, 55));
}

TEST_F(ImageCommand, TurnsByQuarters) {
    const gfx::Bitmap source = codec::decodeFile(photo).bitmap;
    struct Case {
        std::vector<std::string> arguments;
        gfx::PixelSize size;
        // Where the photo's pixel at 100, 50 comes to lie.
        int x;
        int y;
    };
    const Case cases[] = {
        {{"turn"}, {400, 600}, 349, 100},
        {{"turn", "--quarters", "-1"}, {400, 600}, 50, 499},
        {{"turn", "--quarters", "6"}, {600, 400}, 499, 349},
        {{"turn", "--quarters", "0"}, {600, 400}, 100, 50},
    };
    for (const Case& turn : cases) {
        const gfx::Bitmap turned = result(turn.arguments);
        ASSERT_EQ(turned.size(), turn.size);
        EXPECT_EQ(turned.colorAt(turn.x, turn.y), source.colorAt(100, 50));
    }
}

// A photo of 640 x 427 pixels in blocks of 8 x 8.
TEST_F(ImageCommand, SaysWhatHasToBeEncodedAnewAndWhereNothingHas) {
    const std::string jpeg = KALIM_ROOT "/docs/photos/rocket.jpg";
    struct Case {
        std::vector<std::string> arguments;
        const char* reason;
    };
    const Case cases[] = {
        {{"crop", "--rect", "16,16,320,160", jpeg, "part.jpg"}, ""},
        {{"turn", "part.jpg", "1.jpg"}, ""},
        {{"turn", "--quarters", "3", "1.jpg", "4.jpg"}, ""},
        {{"turn", jpeg, "out.png"}, ""},
        {{"crop", "--rect", "5,16,100,100", jpeg, "out.jpg"}, "borders of its blocks of 8 x 8"},
        {{"fit", "--size", "99x99", jpeg, "out.jpg"}, "not at the scale of its picture"},
        {{"turn", jpeg, "out.webp"}, "did not come from a WebP"},
        {{"turn", photo, "out.jpg"}, "did not come from a JPEG"},
    };
    for (const Case& operation : cases) {
        std::vector<std::string> arguments = operation.arguments;
        const std::string output = arguments.back();
        EXPECT_EQ(run(arguments).errors, "") << output;
        arguments.insert(arguments.begin() + 1, "--verbose");
        const ProgramRun done = run(arguments);
        EXPECT_EQ(done.status, 0) << done.errors;
        const std::string reason = operation.reason;
        const std::string start = "kalimkit: " + output + ": encoded anew: ";
        EXPECT_EQ(done.errors.rfind(start, 0), reason.empty() ? std::string::npos : 0U)
            << done.errors;
        EXPECT_NE(done.errors.find(reason), std::string::npos) << done.errors;
    }
    const auto pixels = [&](const char* name) {
        return codec::decodeFile(folder.path() / name).bitmap;
    };
    EXPECT_EQ(pixels("4.jpg"), pixels("part.jpg"));
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
        {{"turn", "--quarters", "half", photo, "out.png"}, "--quarters"},
        {{"turn", "--metadata", "some", photo, "out.png"}, "must be safe, keep or none, not some"},
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
