#include "kalimkit/album/KVAlbumManager.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using ui::PhotoLibrary;

// What is on the device, whichever library object asks for it.
struct Photos : MemoryPhotoLibrary::Contents {
    int librariesMade = 0;
    // The operation that fails, by its first letter.
    char failing = 0;
};

class FakeLibrary : public MemoryPhotoLibrary {
public:
    explicit FakeLibrary(const std::shared_ptr<Photos>& photos)
        : MemoryPhotoLibrary(photos), _photos(photos) {}
    void writeImage(const gfx::ImageRef& image, const Written& written) override {
        if (const Error error = errorOf('w')) return written("", error);
        MemoryPhotoLibrary::writeImage(image, written);
    }
    void listAlbums(const Listed& listed) override {
        if (const Error error = errorOf('l')) return listed({}, error);
        MemoryPhotoLibrary::listAlbums(listed);
    }
    void addAlbum(const std::string& name, const Done& done) override {
        if (const Error error = errorOf('a')) return done(error);
        MemoryPhotoLibrary::addAlbum(name, done);
    }
    void addToAlbum(const std::string& address, const std::string& album,
                    const Done& done) override {
        if (const Error error = errorOf('f')) return done(error);
        MemoryPhotoLibrary::addToAlbum(address, album, done);
    }

private:
    Error errorOf(char operation) const {
        if (operation != _photos->failing) return std::nullopt;
        return ui::PhotoLibraryError{std::string("no ") + operation};
    }
    std::shared_ptr<Photos> _photos;
};

class PhotoHost : public HeadlessEnvironment {
public:
    PhotoHost(gfx::Device& device, std::shared_ptr<Photos> photos)
        : HeadlessEnvironment(device, 2), _photos(std::move(photos)) {}
    std::shared_ptr<PhotoLibrary> makePhotoLibrary() override {
        if (!_photos) return nullptr;
        ++_photos->librariesMade;
        return std::make_shared<FakeLibrary>(_photos);
    }

private:
    std::shared_ptr<Photos> _photos;
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
    std::shared_ptr<Photos> photos = std::make_shared<Photos>();
    gfx::ImageRef image = device().makeImage(gfx::Bitmap(4, 4), 1, gfx::ImageOrientation::Up);
};

TEST_F(AlbumTest, AnAlbumIsMadeOnceAndEverySaveAsksAFreshLibrary) {
    EXPECT_EQ(save(image, "Marked"), "photo 1");
    EXPECT_EQ(save(image, "Marked"), "photo 2");
    EXPECT_EQ(save(image, "Other"), "photo 3");
    EXPECT_EQ(photos->librariesMade, 3);
    EXPECT_EQ(photos->photos.at("photo 2"), image);
    EXPECT_EQ(photos->albums, (std::map<std::string, std::vector<std::string>>{
                                  {"Marked", {"photo 1", "photo 2"}}, {"Other", {"photo 3"}}}));
    EXPECT_EQ(save(nullptr, "Marked"), std::nullopt);
    KVImageWriteToPhotosAlbum(image, "Marked", {});
    EXPECT_EQ(photos->albums["Marked"].size(), 3U);
}

TEST_F(AlbumTest, TheLibrarysErrorsAreToldUnchanged) {
    for (const auto& [failing, told] : {std::pair{'w', " no w"},
                                        {'l', "photo 1 no l"},
                                        {'a', "photo 2 no a"},
                                        {'f', "photo 3 no f"}}) {
        photos->failing = failing;
        EXPECT_EQ(save(image, "Marked"), told);
    }
    EXPECT_TRUE(photos->albums["Marked"].empty());
    EXPECT_EQ(photos->librariesMade, 4);
    ui::Environment::install(std::make_shared<PhotoHost>(device(), nullptr));
    EXPECT_EQ(save(image, "Marked"), " There is no photo library.");
}

TEST_F(AlbumTest, WithoutAScreenPhotosAreKeptInMemory) {
    const auto headless = std::make_shared<HeadlessEnvironment>(device(), 2);
    ui::Environment::install(headless);
    EXPECT_EQ(save(image, "Marked"), "photo 1");
    const auto library = headless->makePhotoLibrary();
    EXPECT_EQ(headless->photos().albums.at("Marked"), std::vector<std::string>{"photo 1"});
    int errors = 0;
    const auto count = [&](const PhotoLibrary::Error& error) { errors += error.has_value(); };
    library->addAlbum("Marked", count);
    library->addToAlbum("photo 4", "Marked", count);
    library->addToAlbum("photo 1", "Other", count);
    EXPECT_EQ(errors, 3);
}

}  // namespace
}  // namespace kalim
