#pragma once

#include <memory>
#include <string>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

// Tells what became of a save: the photo's address, empty after a failure, and the library's error,
// nothing after a success. Where the photo was written but not filed, it tells both.
using AlbumCompletion = ui::PhotoLibrary::Written;

// Writes pictures into the photo library and files them in albums by name; an album that there is
// none of is made. Each save uses a library object of its own.
class KALIM_API KVAlbumManager {
public:
    static KVAlbumManager& sharedManager();

    // Nothing at all happens for null. The completion may be empty.
    void saveImageToAlbumCompletionHandler(const gfx::ImageRef& image, const std::string& album,
                                           const AlbumCompletion& completion);

    // Made when first asked for, dropped after every save. Null where the host has none.
    const std::shared_ptr<ui::PhotoLibrary>& assetsLibrary();
    void setAssetsLibrary(std::shared_ptr<ui::PhotoLibrary> library) {
        _assetsLibrary = std::move(library);
    }

private:
    KVAlbumManager() = default;

    std::shared_ptr<ui::PhotoLibrary> _assetsLibrary;
};

// Saves through the shared manager.
KALIM_API void KVImageWriteToPhotosAlbum(const gfx::ImageRef& image, const std::string& album,
                                         const AlbumCompletion& completion);

}  // namespace kalim
