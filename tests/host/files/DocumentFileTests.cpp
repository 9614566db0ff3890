#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/PngText.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/json/Base64.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

// Writes documents into a folder of its own and opens them.
class DocumentFile : public testing::Test {
protected:
    DocumentFile() {
        codec::Bytes bytes;
        EXPECT_FALSE(codec::encodePng(gfx::Bitmap(3, 2), bytes));
        png.assign(bytes.begin(), bytes.end());
        writeText(folder.path() / "photo.png", png);
        fs::create_directory(folder.path() / "inner");
        writeText(folder.path() / "inner" / "photo.png", png);
    }

    // The last three members of the picture stand for its bytes.
    std::string document(const std::string& picture) const {
        return R"({"format":"kalimkit","version":1,"generator":"g","picture":)" + picture +
               R"(,"crop":null,"quarterTurns":0,"canvas":{"pictureRect":[0,0,3,2],)"
               R"("background":"#FFFFFFFF"},"measuring":{"calibration":0,"unit":"px","show":false},)"
               R"("tools":[{"class":"MDrawArrow","startPoint":[0,0],"endPoint":[2,2],"color":null,)"
               R"("lineWidth":7,"drawType":0,"rotateAngle":0,"lastRotateAngle":0}]})";
    }
    std::string pictureOf(const std::string& bytes) const {
        return R"({"mediaType":"image/png","size":[3,2],"sha256":")" + sha256(png) + "\"," + bytes +
               "}";
    }
    std::string embedded() const { return document(pictureOf(R"("data":")" + base64(png) + "\"")); }
    std::string linked(const std::string& file) const {
        return document(pictureOf(R"("file":")" + file + "\""));
    }

    OpenedFile open(const std::string& text, const char* name = "w.kalim",
                    const FileOpening& opening = {}) const {
        const std::string path = (folder.path() / name).string();
        writeText(path, text);
        return openFile(path, opening);
    }
    // Without the folder.
    std::string errorOf(const std::string& text) const {
        std::string error = open(text).error.value_or("none");
        const std::string above = folder.path().string() + "/";
        for (std::size_t at = 0; (at = error.find(above)) != std::string::npos;)
            error.erase(at, above.size());
        return error;
    }

    TemporaryFolder folder;
    std::string png;
};

std::string replaced(std::string text, const std::string& part, const std::string& other) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.replace(at, part.size(), other);
}

}  // namespace

TEST_F(DocumentFile, OpensWithItsPictureFromInsideOrBeside) {
    for (const std::string& text : {embedded(), "\xEF\xBB\xBF \n" + embedded(), linked("photo.png"),
                                    linked("./inner/photo.png")}) {
        const OpenedFile opened = open(text);
        ASSERT_FALSE(opened.error) << *opened.error;
        ASSERT_TRUE(opened.document);
        EXPECT_EQ(opened.document->tools.size(), 1U);
        EXPECT_EQ(opened.document->picture->data, png);
        EXPECT_EQ(opened.picture.bitmap.size(), (gfx::PixelSize{3, 2}));
    }
    EXPECT_FALSE(open(png, "a.png").document);
}

TEST_F(DocumentFile, NamesTheFirstPlaceThatIsWrong) {
    ::mkfifo((folder.path() / "pipe").c_str(), 0600);
    const std::string whole = embedded();
    std::string many = R"({"class":"A"})";
    for (int i = 0; i < 100'000; ++i)
        many += R"(,{"class":"A"})";
    const std::pair<std::string, std::string> cases[] = {
        {whole.substr(0, whole.size() - 3), "broken JSON"},
        {"{", "broken JSON"},
        {replaced(whole, "[2,2]", "[2,\"2\"]"), "tools[0].endPoint"},
        {replaced(whole, "[2,2]", "[2,1e999]"), ""},
        {replaced(whole, "[2,2]", "[2,NaN]"), "broken JSON"},
        {replaced(whole, "\"endPoint\":[2,2],", ""), "tools[0].endPoint"},
        {replaced(whole, "\"lineWidth\":7", "\"lineWidth\":null"), "tools[0].lineWidth"},
        {replaced(whole, "\"lineWidth\":7", "\"lineWidth\":7,\"lineWidth\":7"),
         "the key \"lineWidth\" is there twice"},
        {replaced(whole, "MDrawArrow", "MDraw\\ud800Arrow"), ""},
        {replaced(whole, "MDrawArrow", "MDraw\xFFRow"), ""},
        {replaced(whole, R"("version":1)", R"("version":2)"), "version 2"},
        {replaced(whole, R"("crop":null)", R"("crop":[0,0,4,1])"), "crop"},
        {replaced(whole, R"("crop":null)", R"("crop":[0,0,0,1])"), "crop"},
        {replaced(whole, R"("quarterTurns":0)", R"("quarterTurns":4)"), "quarterTurns"},
        {replaced(whole, "[3,2]", "[2,3]"), "picture.size"},
        {replaced(whole, base64(png), base64(png + "x")), "picture.sha256"},
        {replaced(whole, base64(png), "no base64"), "picture.data"},
        {replaced(replaced(whole, base64(png), base64("text")), sha256(png), sha256("text")),
         "picture.data: not a picture"},
        {replaced(whole, R"("data":)", R"("file":"photo.png","data":)"), "picture.file"},
        {replaced(whole, R"("tools":[)", R"("tools":[)" + many + ","), "tools"},
        {replaced(whole, R"("tools":[)", R"("more":)" + std::string(100'000, '[')), ""},
        {"{}", "format"},
        {linked("/etc/passwd"), "picture.file must be"},
        {linked("../photo.png"), "picture.file must be"},
        {linked("inner/../../photo.png"), "picture.file must be"},
        {linked("lost.png"), "picture.file: lost.png: No such file"},
        {linked("inner"), "picture.file: inner"},
        {linked(std::string(300, 'a')), "picture.file: aaa"},
        {linked("pipe"), "picture.file: pipe is no file"},
        {linked("w.kalim"), "picture.sha256 is not the hash of w.kalim"},
    };
    for (const auto& [text, problem] : cases) {
        const std::string error = errorOf(text);
        EXPECT_EQ(error.rfind("w.kalim: " + problem, 0), 0U) << error << "\nfor " << problem;
        EXPECT_FALSE(open(text).document) << problem;
    }
    // A file that is too long is not read for that.
    std::ofstream(folder.path() / "long.kalim") << "{";
    fs::resize_file(folder.path() / "long.kalim", std::uintmax_t{1} << 40U);
    EXPECT_NE(openFile((folder.path() / "long.kalim").string()).error->find("longer than"),
              std::string::npos);
}

TEST_F(DocumentFile, IsFoundInsideAPictureUnlessThatIsWanted) {
    codec::Bytes file(png.begin(), png.end());
    ASSERT_FALSE(codec::addPngText(file, documentKeyword, embedded()));
    EXPECT_TRUE(hasDocumentInside(file));
    std::string text(file.begin(), file.end());
    OpenedFile opened = open(text, "p.png");
    ASSERT_FALSE(opened.error) << *opened.error;
    EXPECT_TRUE(opened.isInside && opened.document);
    EXPECT_FALSE(open(text, "p.png", {.isFlat = true}).document);
    // The last byte of the text, before the check sum and the last chunk.
    text[text.size() - 17] ^= 1;
    opened = open(text, "p.png");
    EXPECT_NE(opened.error.value_or("").find("p.png: the document inside is damaged"),
              std::string::npos);
    EXPECT_FALSE(open(text, "p.png", {.isFlat = true}).error);
}

}  // namespace kalim::test
