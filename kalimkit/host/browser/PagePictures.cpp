#include "kalimkit/host/browser/PagePictures.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/host/browser/BrowserImports.h"
#include "kalimkit/host/browser/PageEditor.h"

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace kalim {

namespace {

// Of pictures that the page has numbered and the library has not taken over yet.
std::map<int, gfx::PixelGrid> grids;

int numberOf(const gfx::ImageRef& image) {
    const auto raster =
        image ? std::dynamic_pointer_cast<const gfx::HtmlRaster>(image->raster()) : nullptr;
    return raster ? raster->picture() : 0;
}

void append(std::vector<double>& numbers, const gfx::PixelRect& rect) {
    for (const int number : {rect.x, rect.y, rect.width, rect.height})
        numbers.push_back(number);
}

}  // namespace

gfx::ImageRef takePagePicture(int picture) {
    if (gfx::page::pictureWidth(picture) <= 0) return nullptr;
    const auto raster = gfx::HtmlRaster::adopt(picture);
    const auto node = grids.extract(picture);
    return std::make_shared<const gfx::Image>(raster, 1, gfx::ImageOrientation::Up,
                                              node.empty() ? gfx::PixelGrid() : node.mapped());
}

void tellExported(int picture, const ExportedPicture& exported) {
    std::vector<double> numbers{static_cast<double>(picture),
                                static_cast<double>(numberOf(exported.source)),
                                static_cast<double>(exported.x), static_cast<double>(exported.y),
                                static_cast<double>(exported.quarterTurns)};
    append(numbers, exported.part);
    for (const gfx::PixelRect& rect : exported.hidden)
        append(numbers, rect);
    page::exported(numbers.data(), static_cast<int>(numbers.size()));
}

void tellExported(int picture, const gfx::ImageRef& image, const MDrawView& canvas) {
    ExportedPicture notAtItsScale;
    notAtItsScale.source = canvas.sourceImage();
    tellExported(picture, canvas.exportedPicture(image).value_or(notAtItsScale));
}

}  // namespace kalim

// The buffer holds the file of a picture that the page has numbered and is about to hand over.
KALIM_EXPORT("picture_file") void pictureFile(int picture, int length) {
    const std::string_view file = kalim::pageText(length);
    kalim::grids[picture] =
        kalim::codec::pixelGrid({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
    kalim::dropPageText();
}
