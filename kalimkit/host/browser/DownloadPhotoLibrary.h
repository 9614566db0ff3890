#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>

#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

// The photo library of a page, which has none to write to: a photo becomes a download, and albums
// are remembered for as long as the page is there. It answers at once.
class DownloadPhotoLibrary : public ui::PhotoLibrary {
public:
    struct Contents {
        int photoCount = 0;
        std::set<std::string> albums;
    };

    // Other library objects may share the contents.
    explicit DownloadPhotoLibrary(std::shared_ptr<Contents> contents)
        : _contents(std::move(contents)) {}

    void writeImage(const gfx::ImageRef& image, const Written& written) override;
    void listAlbums(const Listed& listed) override;
    void addAlbum(const std::string& name, const Done& done) override;
    void addToAlbum(const std::string& address, const std::string& album,
                    const Done& done) override;

private:
    std::shared_ptr<Contents> _contents;
};

}  // namespace kalim
