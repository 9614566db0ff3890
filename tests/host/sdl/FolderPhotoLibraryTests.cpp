#include "kalimkit/host/sdl/FolderPhotoLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "kalimkit/album/KVAlbumManager.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/host/sdl/PictureChooser.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestHost.h"

namespace kalim::test {
namespace {

namespace fs = std::filesystem;

// Sets a variable of the process for the length of a scope.
class Variable {
public:
    Variable(const char* name, const std::string& value) : _name(name) {
        if (const char* old = std::getenv(name)) _old = old;
        ::setenv(name, value.c_str(), 1);
    }
    ~Variable() { _old ? ::setenv(_name, _old->c_str(), 1) : ::unsetenv(_name); }

private:
    const char* _name;
    std::optional<std::string> _old;
};

struct FolderHost : HeadlessEnvironment {
    FolderHost(gfx::Device& device, fs::path photos)
        : HeadlessEnvironment(device, 1), folder(std::move(photos)) {}
    std::shared_ptr<ui::PhotoLibrary> makePhotoLibrary() override {
        return std::make_shared<FolderPhotoLibrary>(folder);
    }
    fs::path folder;
};

struct FolderPhotoLibraryTest : testing::Test {
    void use(const fs::path& photos) {
        ui::Environment::install(std::make_shared<FolderHost>(host.environment().device(), photos));
    }
    // What the completion was told: the address, or the error after a blank.
    std::string save(const std::string& album) {
        std::string told;
        KVImageWriteToPhotosAlbum(image, album, [&](const std::string& address, const auto& error) {
            told = address + (error ? " " + error->message : "");
        });
        return told;
    }
    static int count(const fs::path& path) {
        return static_cast<int>(std::distance(fs::directory_iterator(path), {}));
    }

    TestHost host;
    TemporaryFolder folder;
    // Two pixels, red on the right once it is upright.
    gfx::ImageRef image = [this] {
        gfx::Bitmap bitmap(2, 1);
        bitmap.row(0)[2] = 255;
        bitmap.row(0)[3] = bitmap.row(0)[7] = 255;
        return host.environment().device().makeImage(std::move(bitmap), 1,
                                                     gfx::ImageOrientation::Down);
    }();
};

TEST_F(FolderPhotoLibraryTest, FilesPhotosInSubFoldersAndReplacesNothing) {
    const fs::path photos = folder.path() / "made" / "Pictures";
    use(photos);
    const std::string first = save("Marked");
    const std::string second = save("Marked");
    EXPECT_NE(first, second);
    EXPECT_EQ(count(photos / "Marked"), 2);
    EXPECT_TRUE(fs::equivalent(second, photos / "Marked" / fs::path(second).filename()));
    const codec::DecodeResult decoded = codec::decodeFile(first);
    ASSERT_FALSE(decoded.error) << *decoded.error;
    EXPECT_EQ(decoded.bitmap.colorAt(0, 0).red, 0);
    EXPECT_EQ(decoded.bitmap.colorAt(1, 0).red, 1);
    // One of the user's, with a file of the name that the photo would have.
    fs::create_directory(photos / "Mine");
    const fs::path third = photos / fs::path(first).stem().concat(" 3.png");
    writeText(photos / "Mine" / third.filename(), "mine");
    EXPECT_EQ(save("Mine"), third);
    EXPECT_EQ(count(photos / "Mine"), 2);
    EXPECT_EQ(readText(photos / "Mine" / third.filename()), "mine");
    EXPECT_EQ(count(photos), 5) << "three photos and two albums, nothing half-written";
}

TEST_F(FolderPhotoLibraryTest, ErrorsNameThePlaceAndLeaveNothingBehind) {
    writeText(folder.path() / "file", "");
    use(folder.path() / "file" / "Pictures");
    EXPECT_NE(save("Marked").find((folder.path() / "file").string()), std::string::npos);
    EXPECT_EQ(count(folder.path()), 1);

    const fs::path photos = folder.path() / "Pictures";
    use(photos);
    for (const std::string album : {"a/b", "..", ".hidden", ""})
        EXPECT_NE(save(album).find(" " + album + ": an album cannot have this name"),
                  std::string::npos)
            << album;
    // A file in the place of the album.
    writeText(photos / "Taken", "mine");
    EXPECT_NE(save("Taken").find((photos / "Taken").string()), std::string::npos);
    EXPECT_EQ(readText(photos / "Taken"), "mine");
}

TEST_F(FolderPhotoLibraryTest, TheUsualFolderIsTheDesktops) {
    const Variable home("HOME", "/home/me");
    const Variable config("XDG_CONFIG_HOME", folder.path().string());
    EXPECT_EQ(FolderPhotoLibrary::usualFolder(), "/home/me/Pictures");
    const std::pair<const char*, const char*> lists[] = {
        {"XDG_MUSIC_DIR=\"$HOME/m\"\nXDG_PICTURES_DIR=\"$HOME/Bilder\"\n", "/home/me/Bilder"},
        {"  XDG_PICTURES_DIR=\"/media/my \\\"best\\\"\"", "/media/my \"best\""},
        {"# XDG_PICTURES_DIR=\"/no\"\nXDG_PICTURES_DIR=\"relative\"", "/home/me/Pictures"}};
    for (const auto& [list, expected] : lists) {
        writeText(folder.path() / "user-dirs.dirs", list);
        EXPECT_EQ(FolderPhotoLibrary::usualFolder(), expected) << list;
    }
    const Variable nowhere("HOME", "");
    EXPECT_EQ(FolderPhotoLibrary::usualFolder(), "");
}

TEST_F(FolderPhotoLibraryTest, ThePictureDialogTellsThePathTheCancellingAndItsAbsence) {
    const Variable path("PATH", folder.path().string());
    PictureChooser chooser(host.loop());
    std::optional<std::string> told;
    bool isTold = false;
    const auto hear = [&](const std::optional<std::string>& chosen) {
        told = chosen;
        isTold = true;
    };
    EXPECT_FALSE(chooser.choose("Open", hear));
    EXPECT_FALSE(isTold);
    const std::pair<const char*, std::optional<std::string>> dialogs[] = {
        {"#!/bin/sh\necho '/photos/a b.jpg'\n", "/photos/a b.jpg"},
        {"#!/bin/sh\nexit 1\n", std::nullopt},
        {"#!/bin/sh\necho half; kill -9 $$\n", std::nullopt}};
    for (const auto& [script, expected] : dialogs) {
        writeText(folder.path() / "zenity", script);
        fs::permissions(folder.path() / "zenity", fs::perms::owner_all);
        isTold = false;
        EXPECT_TRUE(chooser.choose("Open", hear));
        while (!isTold)
            host.wait(0.05);
        EXPECT_EQ(told, expected) << script;
    }
    // One that nobody answers goes with whoever asked.
    writeText(folder.path() / "zenity", "#!/bin/sh\nexec /bin/sleep 100\n");
    isTold = false;
    EXPECT_TRUE(PictureChooser(host.loop()).choose("Open", hear));
    host.wait(1);
    EXPECT_FALSE(isTold);
}

}  // namespace
}  // namespace kalim::test
