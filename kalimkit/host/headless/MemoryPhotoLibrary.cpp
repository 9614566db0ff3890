#include "kalimkit/host/headless/MemoryPhotoLibrary.h"

namespace kalim {

void MemoryPhotoLibrary::writeImage(const gfx::ImageRef& image, const Written& written) {
    if (!image) return written({}, ui::PhotoLibraryError{"there is no picture to write"});
    const std::string address = "photo " + std::to_string(_contents->photos.size() + 1);
    _contents->photos[address] = image;
    written(address, std::nullopt);
}

void MemoryPhotoLibrary::listAlbums(const Listed& listed) {
    std::vector<std::string> names;
    for (const auto& [name, photos] : _contents->albums)
        names.push_back(name);
    listed(names, std::nullopt);
}

void MemoryPhotoLibrary::addAlbum(const std::string& name, const Done& done) {
    const bool isNew = _contents->albums.try_emplace(name).second;
    done(isNew ? Error() : ui::PhotoLibraryError{name + ": this album is there already"});
}

void MemoryPhotoLibrary::addToAlbum(const std::string& address, const std::string& album,
                                    const Done& done) {
    if (!_contents->photos.contains(address)) {
        return done(ui::PhotoLibraryError{address + ": there is no such photo"});
    }
    const auto found = _contents->albums.find(album);
    if (found == _contents->albums.end()) {
        return done(ui::PhotoLibraryError{album + ": there is no such album"});
    }
    found->second.push_back(address);
    done(std::nullopt);
}

}  // namespace kalim
