#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

// A folder as photo library: photos are PNG files in it, known by their paths, and albums its
// sub-folders. A photo that is filed is in both, as one file under two names where the disk can do
// that and else as a copy. No file that is there is ever replaced. It answers at once; errors name
// the path.
class KALIM_API FolderPhotoLibrary : public ui::PhotoLibrary {
public:
    // The folder is made with the first photo or album.
    explicit FolderPhotoLibrary(std::filesystem::path folder) : _folder(std::move(folder)) {}

    // The user's folder of pictures, as his desktop has it, else ~/Pictures; empty where there is
    // no home.
    static std::filesystem::path usualFolder();

    void writeImage(const gfx::ImageRef& image, const Written& written) override;
    void listAlbums(const Listed& listed) override;
    // A name that cannot be that of a visible folder is an error.
    void addAlbum(const std::string& name, const Done& done) override;
    void addToAlbum(const std::string& address, const std::string& album,
                    const Done& done) override;

private:
    // Empty where there is none.
    std::filesystem::path _folder;
};

}  // namespace kalim
