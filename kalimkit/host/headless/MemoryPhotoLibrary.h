#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

// A photo library that lasts as long as the process. It answers at once.
class KALIM_API MemoryPhotoLibrary : public ui::PhotoLibrary {
public:
    struct Contents {
        // They are found by address.
        std::map<std::string, gfx::ImageRef> photos;
        // Each holds its addresses in the order of filing.
        std::map<std::string, std::vector<std::string>> albums;
    };

    // Other library objects may share the contents.
    explicit MemoryPhotoLibrary(std::shared_ptr<Contents> contents)
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
