#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

class InfoCommand : public testing::Test {
protected:
    ProgramRun info(const std::string& file, const std::string& input = {}) const {
        return runProgram(KALIM_COMMAND, {"info", file}, folder.path(), input);
    }
    void makePicture(const std::string& name) const {
        const ProgramRun made = runProgram(
            KALIM_COMMAND, {"image", "fit", "--size", "60x60", photo, name}, folder.path());
        ASSERT_EQ(made.status, 0) << made.errors;
    }

    TemporaryFolder folder;
    // 600 x 400.
    std::string photo = KALIM_ROOT "/docs/photos/coffee.png";
};

constexpr const char* nothing = R"("place":false,"owner":false,"serialNumber":false)";

}  // namespace

TEST_F(InfoCommand, DescribesPictures) {
    EXPECT_EQ(info(photo).output,
              R"({"kind":"picture","mediaType":"image/png","size":[600,400],"orientation":1,)"
              R"("bitDepth":8,)"
              R"("colorProfile":null,"bytes":466706,"metadata":{)" +
                  std::string(nothing) +
                  R"(},"tools":null,"crop":null,"quarterTurns":null,"sealed":null})"
                  "\n");
    EXPECT_EQ(info("-", readText(photo)).output, info(photo).output);
    writeText(folder.path() / "text.png", "no picture");
    writeText(folder.path() / "cut.png", readText(photo).substr(0, 5000));
    for (const char* name : {"lost.png", "text.png", "cut.png"}) {
        const ProgramRun wrong = info(name);
        EXPECT_EQ(wrong.status, 2);
        EXPECT_EQ(wrong.output, "");
        EXPECT_EQ(wrong.errors.rfind(std::string("kalimkit: ") + name + ": ", 0), 0U)
            << wrong.errors;
    }
}

// Another program writes what is looked for.
TEST_F(InfoCommand, TellsWhatMetadataSayOfAPerson) {
    if (std::string(KALIM_EXIFTOOL).empty()) GTEST_SKIP() << "exiftool is not installed";
    struct Case {
        std::vector<std::string> tags;
        const char* metadata;
        // Not every format has every kind of block.
        std::vector<std::string> endings{"png", "jpg", "webp"};
    };
    constexpr const char* place = R"("place":true,"owner":false,"serialNumber":false)";
    constexpr const char* owner = R"("place":false,"owner":true,"serialNumber":false)";
    constexpr const char* serialNumber = R"("place":false,"owner":false,"serialNumber":true)";
    const std::string longCity = "-XMP-photoshop:City=" + std::string(70'000, 'B');
    const Case cases[] = {
        {{"-GPSLatitude=52.5", "-GPSLatitudeRef=N"}, place},
        {{"-XMP-iptcCore:Location=Bridge"}, place},
        {{longCity}, place, {"jpg"}},
        {{"-IPTC:City=Berlin"}, place, {"png", "jpg"}},
        {{"-EXIF:OwnerName=Anna"}, owner},
        {{"-EXIF:Artist=Anna"}, owner},
        {{"-XMP-dc:Creator=Anna"}, owner},
        {{"-IPTC:By-line=Anna"}, owner, {"png", "jpg"}},
        {{"-PNG:Author=Anna"}, owner, {"png"}},
        {{"-EXIF:SerialNumber=12"}, serialNumber},
        {{"-XMP-exifEX:LensSerialNumber=12"}, serialNumber},
        {{"-XMP-aux:SerialNumber=12", "-EXIF:OwnerName= "}, serialNumber},
        {{"-EXIF:Make=Maker", "-GPSImgDirection=3", "-XMP:Title=t", "-XMP-xmp:CreatorTool=t"},
         nothing},
        {{"-IPTC:Keywords=k"}, nothing, {"png", "jpg"}},
    };
    for (const char* ending : {"png", "jpg", "webp"})
        makePicture(std::string("plain.") + ending);
    for (const Case& one : cases) {
        std::vector<std::string> arguments{"-q", "-q", "-overwrite_original"};
        arguments.insert(arguments.end(), one.tags.begin(), one.tags.end());
        for (const std::string& ending : one.endings) {
            std::filesystem::copy_file(folder.path() / ("plain." + ending),
                                       folder.path() / ("told." + ending),
                                       std::filesystem::copy_options::overwrite_existing);
            arguments.push_back("told." + ending);
        }
        const ProgramRun told = runProgram(KALIM_EXIFTOOL, arguments, folder.path());
        ASSERT_EQ(told.status, 0) << one.tags.front().substr(0, 40) << told.errors;
        for (const std::string& ending : one.endings) {
            const std::string output = info("told." + ending).output;
            EXPECT_NE(output.find(one.metadata), std::string::npos)
                << ending << one.tags.front().substr(0, 40) << output;
        }
    }
}

}  // namespace kalim::test
