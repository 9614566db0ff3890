#include "kalimkit/album/KVAlbumManager.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/image/EditImageUtil.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using ui::PhotoLibrary;

// What is on the device, whichever library object asks for it.
struct Photos {
    std::map<std::string, std::vector<std::string>> albums;
    int written = 0;
    int librariesMade = 0;
    // The operation that fails, by its first letter.
    char failing = 0;
};

class FakeLibrary : public PhotoLibrary {
public:
    explicit FakeLibrary(Photos& photos) : _photos(photos) { ++photos.librariesMade; }
    void writeImage(const gfx::ImageRef&, const Written& written) override {
        const Error error = errorOf('w');
        written(error ? "" : "photo" + std::to_string(++_photos.written), error);
    }
    void listAlbums(const Listed& listed) override {
        std::vector<std::string> names;
        for (const auto& [name, photos] : _photos.albums)
            names.push_back(name);
        listed(names, errorOf('l'));
    }
    void addAlbum(const std::string& name, const Done& done) override {
        const Error error = errorOf('a');
        if (!error) _photos.albums[name];
        done(error);
    }
    void addToAlbum(const std::string& address, const std::string& album,
                    const Done& done) override {
        const Error error = errorOf('f');
        if (!error) _photos.albums.at(album).push_back(address);
        done(error);
    }

private:
    Error errorOf(char operation) const {
        if (operation != _photos.failing) return std::nullopt;
        return ui::PhotoLibraryError{std::string("no ") + operation};
    }
    Photos& _photos;
};

class PhotoHost : public HeadlessEnvironment {
public:
    PhotoHost(gfx::Device& device, Photos& photos)
        : HeadlessEnvironment(device, 2), _photos(photos) {}
    std::shared_ptr<PhotoLibrary> makePhotoLibrary() override {
        return std::make_shared<FakeLibrary>(_photos);
    }

private:
    Photos& _photos;
};

struct AlbumTest : testing::Test {
    AlbumTest() { ui::Environment::install(std::make_shared<PhotoHost>(device(), photos)); }
    gfx::Device& device() { return host.environment().device(); }
    // What the completion was told; nothing when it was not called.
    std::optional<std::string> save(const gfx::ImageRef& image, const std::string& album) {
        std::optional<std::string> told;
        KVImageWriteToPhotosAlbum(
            image, album, [&](const std::string& address, const PhotoLibrary::Error& error) {
                told = address + (error ? " " + error->message : "");
            });
        return told;
    }

    test::TestHost host;
    Photos photos;
    gfx::ImageRef image = device().makeImage(gfx::Bitmap(4, 4), 1, gfx::ImageOrientation::Up);
};

TEST_F(AlbumTest, AnAlbumIsMadeOnceAndEverySaveAsksAFreshLibrary) {
    EXPECT_EQ(save(image, "Marked"), "photo1");
    EXPECT_EQ(save(image, "Marked"), "photo2");
    EXPECT_EQ(save(image, "Other"), "photo3");
    EXPECT_EQ(photos.librariesMade, 3);
    EXPECT_EQ(photos.albums, (std::map<std::string, std::vector<std::string>>{
                                 {"Marked", {"photo1", "photo2"}}, {"Other", {"photo3"}}}));
    EXPECT_EQ(save(nullptr, "Marked"), std::nullopt);
    KVImageWriteToPhotosAlbum(image, "Marked", {});
    EXPECT_EQ(photos.albums["Marked"].size(), 3U);
}

TEST_F(AlbumTest, TheLibrarysErrorsAreToldUnchanged) {
    for (const auto& [failing, told] : {std::pair{'w', " no w"},
                                        {'l', "photo1 no l"},
                                        {'a', "photo2 no a"},
                                        {'f', "photo3 no f"}}) {
        photos.failing = failing;
        EXPECT_EQ(save(image, "Marked"), told);
    }
    EXPECT_TRUE(photos.albums["Marked"].empty());
    EXPECT_EQ(photos.librariesMade, 4);
}

TEST_F(AlbumTest, AHostWithoutALibrarySaysSo) {
    struct Bare : HeadlessEnvironment {
        using HeadlessEnvironment::HeadlessEnvironment;
        std::shared_ptr<PhotoLibrary> makePhotoLibrary() override { return nullptr; }
    };
    ui::Environment::install(std::make_shared<Bare>(device(), 2));
    EXPECT_EQ(save(image, "Marked"), " There is no photo library.");
}

TEST_F(AlbumTest, WithoutAScreenPhotosAreKeptInMemory) {
    const auto headless = std::make_shared<HeadlessEnvironment>(device(), 2);
    ui::Environment::install(headless);
    EXPECT_EQ(save(image, "Marked"), "photo 1");
    EXPECT_EQ(save(image, "Marked"), "photo 2");
    EXPECT_EQ(save(image, ""), "photo 3");
    const auto& photos = headless->photos();
    EXPECT_EQ(photos.photos.at("photo 2"), image);
    EXPECT_EQ(photos.albums, (std::map<std::string, std::vector<std::string>>{
                                 {"", {"photo 3"}}, {"Marked", {"photo 1", "photo 2"}}}));
    MemoryPhotoLibrary library(std::make_shared<MemoryPhotoLibrary::Contents>(photos));
    int errors = 0;
    const auto count = [&](const PhotoLibrary::Error& error) { errors += error.has_value(); };
    library.addAlbum("Marked", count);
    library.addToAlbum("photo 4", "Marked", count);
    library.addToAlbum("photo 1", "Other", count);
    EXPECT_EQ(errors, 3);
}

}  // namespace
}  // namespace kalim
