#include "kalimkit/album/KVAlbumManager.h"

#include "kalimkit/album/KVAssetsLibrary.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

KVAlbumManager& KVAlbumManager::sharedManager() {
    static KVAlbumManager manager;
    return manager;
}

const std::shared_ptr<ui::PhotoLibrary>& KVAlbumManager::assetsLibrary() {
    if (!_assetsLibrary) _assetsLibrary = ui::Environment::current().makePhotoLibrary();
    return _assetsLibrary;
}

void KVAlbumManager::saveImageToAlbumCompletionHandler(const gfx::ImageRef& image,
                                                       const std::string& album,
                                                       const AlbumCompletion& completion) {
    if (!image) return;
    const std::shared_ptr<ui::PhotoLibrary> library = assetsLibrary();
    if (!library) {
        if (completion) completion({}, ui::PhotoLibraryError{"There is no photo library."});
        return;
    }
    const auto finished = [this, completion](const std::string& address,
                                             const ui::PhotoLibrary::Error& error) {
        if (completion) completion(address, error);
        _assetsLibrary = nullptr;
    };
    writeImageToAlbumCompletionHandler(library, image, album, finished);
}

void KVImageWriteToPhotosAlbum(const gfx::ImageRef& image, const std::string& album,
                               const AlbumCompletion& completion) {
    KVAlbumManager::sharedManager().saveImageToAlbumCompletionHandler(image, album, completion);
}

}  // namespace kalim
