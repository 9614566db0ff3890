#include "kalimkit/codec/Files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/NewFile.h"
#include "kalimkit/codec/TerminalText.h"
#include "tests/support/ProgramRun.h"

namespace kalim::codec::test {

namespace fs = std::filesystem;

// Each test works in an empty folder of its own.
class Files : public testing::Test {
protected:
    std::string path(const std::string& name) const { return (_folder.path() / name).string(); }
    void write(const std::string& name, const Bytes& bytes) const {
        ASSERT_EQ(writeFileAtomically(path(name), bytes), std::nullopt);
    }
    Bytes read(const std::string& name) const {
        Bytes bytes;
        EXPECT_EQ(readFile(path(name), bytes), std::nullopt);
        return bytes;
    }
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(_folder.path())) {
            found.insert(entry.path().filename().string());
        }
        return found;
    }

private:
    kalim::test::TemporaryFolder _folder;
};

TEST_F(Files, AWrittenFileHoldsExactlyTheNewBytes) {
    const Bytes large(200'000, 7);
    write("a.bin", large);
    EXPECT_EQ(read("a.bin"), large);
    write("a.bin", {1, 2, 3});
    EXPECT_EQ(read("a.bin"), (Bytes{1, 2, 3}));
    write("a.bin", {});
    EXPECT_EQ(read("a.bin"), Bytes{});
    EXPECT_EQ(names(), std::set<std::string>{"a.bin"});
}

TEST_F(Files, AnExistingFileKeepsItsModeAndANewOneFollowsTheMask) {
    write("old", {1});
    ASSERT_EQ(::chmod(path("old").c_str(), 0640), 0);
    const mode_t mask = ::umask(027);
    write("old", {2});
    write("new", {2});
    ::umask(mask);
    for (const char* name : {"old", "new"})
        EXPECT_EQ(fs::status(path(name)).permissions(), fs::perms{0640}) << name;
}

TEST_F(Files, ASymbolicLinkStaysAndItsTargetIsReplaced) {
    fs::create_directory(path("deep"));
    write("deep/target", {1});
    fs::create_symlink("target", path("deep/second"));
    fs::create_symlink("deep/second", path("first"));
    fs::create_symlink("deep/missing", path("dangling"));
    write("first", {2});
    write("dangling", {3});
    EXPECT_TRUE(fs::is_symlink(path("first")));
    EXPECT_TRUE(fs::is_symlink(path("deep/second")));
    EXPECT_EQ(read("deep/target"), Bytes{2});
    EXPECT_TRUE(fs::is_symlink(path("dangling")));
    EXPECT_EQ(read("deep/missing"), Bytes{3});

    fs::create_symlink("loop", path("loop"));
    EXPECT_EQ(writeFileAtomically(path("loop"), Bytes{1}),
              path("loop") + ": Too many levels of symbolic links");
}

TEST_F(Files, APipeIsWrittenToAndStaysAPipe) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    write("pipe", {1, 2, 3});
    Bytes received(8);
    EXPECT_EQ(::read(reader, received.data(), received.size()), 3);
    ::close(reader);
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(Files, WhatCannotBeWrittenIsNamedAndNothingIsLeftBehind) {
    fs::create_directory(path("folder"));
    write("file", {1});
    EXPECT_EQ(writeFileAtomically(path("folder"), Bytes{1}), path("folder") + ": Is a directory");
    EXPECT_EQ(writeFileAtomically(path("none/a"), Bytes{1}),
              path("none/a") + ": No such file or directory");
    EXPECT_EQ(writeFileAtomically(path("file/a"), Bytes{1}), path("file/a") + ": Not a directory");
    const std::string longName(300, 'n');
    EXPECT_EQ(writeFileAtomically(path(longName), Bytes{1}),
              path(longName) + ": File name too long");
    EXPECT_EQ(names(), (std::set<std::string>{"file", "folder"}));
    EXPECT_EQ(read("file"), Bytes{1});
}

TEST_F(Files, AWriteThatFailsHalfWayLeavesTheOldFile) {
    write("file", {1, 2, 3});
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto error = writeFileAtomically(path("file"), Bytes(5000, 9));
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    EXPECT_EQ(error, path("file") + ": File too large");
    EXPECT_EQ(read("file"), (Bytes{1, 2, 3}));
    EXPECT_EQ(names(), std::set<std::string>{"file"});
}

TEST_F(Files, AFileWithoutWritePermissionIsNotReplaced) {
    write("file", {1});
    ASSERT_EQ(::chmod(path("file").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(path(".").c_str(), 0777), 0);
    // Root may write everything, so it becomes nobody for a moment.
    const uid_t former = ::geteuid();
    constexpr uid_t nobody = 65534;
    ASSERT_TRUE(former != 0 || ::seteuid(nobody) == 0);
    const auto error = writeFileAtomically(path("file"), Bytes{2});
    ASSERT_EQ(::seteuid(former), 0);
    EXPECT_EQ(error, path("file") + ": Permission denied");
    EXPECT_EQ(read("file"), Bytes{1});
}

TEST_F(Files, ReadingNamesWhatIsMissingTooLongOrNoFile) {
    write("file", Bytes(100, 5));
    Bytes bytes{1};
    EXPECT_EQ(readFile(path("none"), bytes), path("none") + ": No such file or directory");
    EXPECT_EQ(readFile(path("."), bytes), path(".") + ": Is a directory");
    EXPECT_EQ(readFile(path("file"), bytes, 99),
              path("file") + ": the file is longer than 99 bytes");
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(readFile(path("file"), bytes, 100), std::nullopt);
    EXPECT_EQ(bytes.size(), 100U);
    // A device has no length of its own.
    EXPECT_EQ(readFile("/dev/zero", bytes, 70'000),
              "/dev/zero: the file is longer than 70000 bytes");
}

TEST_F(Files, ANewFileNeverTakesThePlaceOfAnother) {
    bool isTaken = true;
    EXPECT_EQ(writeNewFile(path("new"), Bytes{1}, isTaken), std::nullopt);
    EXPECT_FALSE(isTaken);
    fs::create_symlink("nowhere", path("link"));
    for (const std::string name : {"new", "link"}) {
        EXPECT_EQ(writeNewFile(path(name), Bytes{2}, isTaken), path(name) + ": File exists");
        EXPECT_TRUE(isTaken) << name;
    }
    EXPECT_EQ(read("new"), Bytes{1});
    EXPECT_EQ(names(), (std::set<std::string>{"new", "link"}));
}

TEST_F(Files, WhatAKilledWriterLeftIsRemovedAndALivingOnesIsNot) {
    {
        NewFile written(path("target"));
        ASSERT_EQ(written.fill(Bytes(100, 7)), 0);
        NewFile::removeLeftovers(path("."));
        ASSERT_EQ(written.replaceTarget(), 0);
    }
    EXPECT_EQ(read("target"), Bytes(100, 7));
    for (const char* name : {".kalim-1-0.tmp", ".kalim-99999-12.tmp", ".kalim-mine.tmp", "x.tmp"})
        std::ofstream(path(name)) << "half";
    const int living = ::open(path(".kalim-1-0.tmp").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(living, LOCK_EX), 0);
    write("other", {1});
    EXPECT_EQ(names(), (std::set<std::string>{".kalim-1-0.tmp", ".kalim-mine.tmp", "x.tmp", "other",
                                              "target"}));
    ::close(living);
}

TEST_F(Files, WhatIsNoPictureIsReadNoFurtherThanItsStart) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string text = "no picture, and it never ends";
    ASSERT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    Bytes bytes;
    // It would wait for ever otherwise.
    EXPECT_EQ(readPictureFile("/dev/fd/" + std::to_string(ends[0]), bytes), std::nullopt);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), text.substr(0, startLength));
    EXPECT_EQ(
        decode(bytes, "it").error,
        "it: not a picture that can be read (JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF or HEIC)");
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(TerminalText, ShowsWhatATerminalWouldObey) {
    const std::pair<const char*, const char*> cases[] = {
        {"photo 照片 é😀.png", "photo 照片 é😀.png"},
        {"a\x1B[2Jb\n\t\x7F", "a\\x1B[2Jb\\x0A\\x09\\x7F"},
        {"\xC2\x9B"
         "2J",
         "\\x9B2J"},
        {"\x9B\xFF\xE4\xBD", "\\x9B\\xFF\\xE4\\xBD"},
        {"\xC0\x80\xED\xA0\x80", "\\xC0\\x80\\xED\\xA0\\x80"},
        {"gpj.\xE2\x80\xAE"
         "exe",
         "gpj.\\u202Eexe"},
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(terminalText(text), shown);
}

TEST_F(Files, AZeroByteInANameIsNotTheEndOfIt) {
    write("box.png", Bytes(3, 7));
    const std::string name = path("box.png") + std::string("\0.jpg", 5);
    Bytes bytes;
    EXPECT_NE(readFile(name, bytes), std::nullopt);
    EXPECT_NE(writeFileAtomically(name, Bytes(9, 9)), std::nullopt);
    EXPECT_EQ(readFile(path("box.png"), bytes), std::nullopt);
    EXPECT_EQ(bytes, Bytes(3, 7));
    EXPECT_EQ(readFile("", bytes), "the name of a file is empty");
}

}  // namespace kalim::codec::test
