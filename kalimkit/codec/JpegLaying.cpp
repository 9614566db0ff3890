#include "kalimkit/codec/JpegLaying.h"

#include "kalimkit/codec/JpegLayer.h"

namespace kalim::codec {

namespace {

constexpr const char* inks = "its colours are stored as inks (CMYK)";
constexpr const char* missingBits = "its progressive scans are not complete";
constexpr const char* tooLarge = "its coefficients need too much memory";

std::string offCells(gfx::PixelSize cell) {
    return "what is shown of it does not begin at the borders of its blocks of " +
           std::to_string(cell.width) + " x " + std::to_string(cell.height) + " pixels";
}

std::string cutCells(gfx::PixelSize cell) {
    return "what is shown of it does not end at the borders of its blocks of " +
           std::to_string(cell.width) + " x " + std::to_string(cell.height) +
           " pixels, so the last ones were encoded anew";
}

// Why the source's coefficients cannot be used, or nothing.
std::string problemOf(const JpegReader& source, ByteSpan file, const JpegPlacement& placement) {
    const jpeg_decompress_struct& info = source.info();
    if (info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK) return inks;
    const gfx::PixelSize stored = source.storedSize();
    const JpegCoding coding = JpegCoding::of(info, stored);
    if (coding.space == JCS_UNKNOWN) return "its colours are sampled in an unusual way";
    if (source.frame().lacksBits(file)) return missingBits;
    const bool isMoved = placement.fromSource != PixelMap{} || placement.size != stored;
    const std::size_t bytes = coding.coefficientBytes() * (isMoved ? 2 : 1);
    if (bytes > JpegCoding::maxCoefficientBytes) return tooLarge;
    return placement.isOnCells() ? "" : offCells(placement.cell);
}

}  // namespace

LaidJpeg layIntoJpeg(const gfx::Bitmap& result, const SavingSource& source, ByteSpan touched) {
    LaidJpeg laid;
    if (result.isEmpty()) {
        laid.encodedAnew = "the result has no pixels";
        return laid;
    }
    JpegLayer layer(source.file);
    if (!layer.readHeader()) {
        laid.encodedAnew = layer.error();
        return laid;
    }
    if (const auto problem = layer.headerProblem({})) {
        laid.encodedAnew = *problem;
        return laid;
    }
    const JpegPlacement placement = JpegPlacement::of(source, result.size(), layer.orientation(),
                                                      layer.storedSize(), layer.frame().cell());
    laid.encodedAnew = problemOf(layer, source.file, placement);
    if (!laid.encodedAnew.empty()) return laid;
    const StoredResult stored(result, placement.toResult);
    const DrawnPixels drawn(placement, source, touched);
    if (!layer.lay(placement, drawn, stored)) {
        laid.encodedAnew = layer.error();
        return laid;
    }
    laid.bytes.assign(layer.bytes().begin(), layer.bytes().end());
    laid.isGrey = layer.coding().space == JCS_GRAYSCALE;
    if (placement.cutsRight || placement.cutsBottom) laid.encodedAnew = cutCells(placement.cell);
    return laid;
}

}  // namespace kalim::codec
