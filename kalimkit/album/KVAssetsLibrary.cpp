#include "kalimkit/album/KVAssetsLibrary.h"

#include <algorithm>
#include <vector>

namespace kalim {

using ui::PhotoLibrary;

void writeImageToAlbumCompletionHandler(const std::shared_ptr<PhotoLibrary>& library,
                                        const gfx::ImageRef& image, const std::string& album,
                                        const PhotoLibrary::Written& completion) {
    library->writeImage(image, [library, album, completion](const std::string& address,
                                                            const PhotoLibrary::Error& error) {
        if (error) return completion(address, error);
        addAssetURLToAlbumCompletionHandler(
            library, address, album, [address, completion](const PhotoLibrary::Error& filing) {
                completion(address, filing);
            });
    });
}

void addAssetURLToAlbumCompletionHandler(const std::shared_ptr<PhotoLibrary>& library,
                                         const std::string& address, const std::string& album,
                                         const PhotoLibrary::Done& completion) {
    const auto file = [library, address, album, completion] {
        library->addToAlbum(address, album, completion);
    };
    library->listAlbums(
        [=](const std::vector<std::string>& albums, const PhotoLibrary::Error& error) {
            if (error) return completion(error);
            if (std::ranges::find(albums, album) != albums.end()) return file();
            library->addAlbum(album, [=](const PhotoLibrary::Error& making) {
                if (making) return completion(making);
                file();
            });
        });
}

}  // namespace kalim
