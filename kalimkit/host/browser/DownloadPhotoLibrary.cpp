#include "kalimkit/host/browser/DownloadPhotoLibrary.h"

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/host/browser/BrowserImports.h"
#include "kalimkit/host/browser/PageEditor.h"
#include "kalimkit/host/browser/PagePictures.h"

namespace kalim {

void DownloadPhotoLibrary::writeImage(const gfx::ImageRef& image, const Written& written) {
    const auto raster = image ? gfx::HtmlRaster::of(*image) : nullptr;
    if (!raster) return written({}, ui::PhotoLibraryError{"There is no picture to save."});
    const BrowserEditor* const editor = pageEditor();
    if (editor && editor->canvas()) tellExported(raster->picture(), image, *editor->canvas());
    page::savePicture(raster->picture());
    written("download " + std::to_string(++_contents->photoCount), std::nullopt);
}

void DownloadPhotoLibrary::listAlbums(const Listed& listed) {
    listed({_contents->albums.begin(), _contents->albums.end()}, std::nullopt);
}

void DownloadPhotoLibrary::addAlbum(const std::string& name, const Done& done) {
    const bool isNew = _contents->albums.insert(name).second;
    done(isNew ? Error() : ui::PhotoLibraryError{name + ": this album is there already."});
}

void DownloadPhotoLibrary::addToAlbum(const std::string& /*address*/, const std::string& album,
                                      const Done& done) {
    const bool isThere = _contents->albums.contains(album);
    done(isThere ? Error() : ui::PhotoLibraryError{album + ": there is no such album."});
}

}  // namespace kalim
