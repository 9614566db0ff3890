#include <avif/avif.h>

#include <array>
#include <memory>

#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/imports/Import.h"
#include "kalimkit/codec/imports/Library.h"

namespace kalim::codec {

namespace {

// The functions of the library that are used.
struct AvifLibrary {
    static const AvifLibrary& shared() {
        static const AvifLibrary library;
        return library;
    }

    AvifLibrary() {
        library.find("avifDecoderCreate", create)
            .find("avifDecoderDestroy", destroy)
            .find("avifDecoderSetIOMemory", setMemory)
            .find("avifDecoderParse", parse)
            .find("avifDecoderNextImage", nextImage)
            .find("avifRGBImageSetDefaults", setDefaults)
            .find("avifImageYUVToRGB", toRgb)
            .find("avifResultToString", text);
    }

    Library library{KALIM_AVIF_LIBRARY};
    decltype(&avifDecoderCreate) create = nullptr;
    decltype(&avifDecoderDestroy) destroy = nullptr;
    decltype(&avifDecoderSetIOMemory) setMemory = nullptr;
    decltype(&avifDecoderParse) parse = nullptr;
    decltype(&avifDecoderNextImage) nextImage = nullptr;
    decltype(&avifRGBImageSetDefaults) setDefaults = nullptr;
    decltype(&avifImageYUVToRGB) toRgb = nullptr;
    decltype(&avifResultToString) text = nullptr;
};

// As the file turns it first, by quarters counter-clockwise, and flips it then; in the numbers of
// Exif.
gfx::ImageOrientation orientationOf(const avifImage& image) {
    constexpr std::array turned{1, 8, 3, 6};
    // What was turned so and is flipped from left to right, or from top to bottom.
    constexpr std::array besides{2, 7, 4, 5};
    constexpr std::array above{4, 5, 2, 7};
    const bool isTurned = (image.transformFlags & AVIF_TRANSFORM_IROT) != 0;
    const std::size_t quarters = isTurned ? image.irot.angle % 4U : 0;
    if ((image.transformFlags & AVIF_TRANSFORM_IMIR) == 0)
        return orientationOfExif(turned[quarters]);
#if AVIF_VERSION_MAJOR > 0
    const bool isBeside = image.imir.axis != 0;
#else
    const bool isBeside = image.imir.mode != 0;
#endif
    return orientationOfExif(isBeside ? besides[quarters] : above[quarters]);
}

std::string problemOf(avifResult result) {
    if (result == AVIF_RESULT_OUT_OF_MEMORY) return notEnoughMemory;
    if (result == AVIF_RESULT_TRUNCATED_DATA) return "the AVIF data end too early";
    return std::string("the AVIF data are damaged (") + AvifLibrary::shared().text(result) + ")";
}

avifResult convert(const avifImage& image, gfx::Bitmap& bitmap) {
    const AvifLibrary& library = AvifLibrary::shared();
    avifRGBImage pixels{};
    library.setDefaults(&pixels, &image);
    pixels.format = AVIF_RGB_FORMAT_BGRA;
    pixels.depth = 8;
    pixels.alphaPremultiplied = AVIF_FALSE;
    pixels.pixels = bitmap.data();
    pixels.rowBytes = static_cast<std::uint32_t>(bitmap.stride());
    return library.toRgb(&image, &pixels);
}

}  // namespace

std::optional<std::string> loadAvif() {
    if (AvifLibrary::shared().library.isWhole()) return std::nullopt;
    return Library::advice("AVIF", KALIM_AVIF_LIBRARY);
}

DecodeResult readAvif(ByteSpan bytes, const DecodeLimits& limits) {
    const AvifLibrary& library = AvifLibrary::shared();
    const std::unique_ptr<avifDecoder, decltype(library.destroy)> decoder(library.create(),
                                                                          library.destroy);
    if (!decoder) return importFailure(notEnoughMemory);
    // A process that is locked in makes no threads.
    decoder->maxThreads = 1;
    decoder->imageSizeLimit = static_cast<std::uint32_t>(limits.maxPixels);
    decoder->ignoreExif = decoder->ignoreXMP = AVIF_TRUE;
    // Many that people have are not quite as the standard wants them.
    decoder->strictFlags = AVIF_STRICT_DISABLED;
    avifResult step = library.setMemory(decoder.get(), bytes.data(), bytes.size());
    if (step == AVIF_RESULT_OK) step = library.parse(decoder.get());
    if (step != AVIF_RESULT_OK) return importFailure(problemOf(step));
    DecodeResult result;
    result.error = sizeProblem(decoder->image->width, decoder->image->height, limits);
    if (result.error) return result;
    step = library.nextImage(decoder.get());
    const avifImage& image = *decoder->image;
    if (step != AVIF_RESULT_OK) return importFailure(problemOf(step));
    if (!allocatePixels(result, image.width, image.height, limits)) return result;
    step = convert(image, result.bitmap);
    if (step != AVIF_RESULT_OK) return importFailure(problemOf(step));
    result.orientation = orientationOf(image);
    result.imported = {static_cast<int>(image.depth), {}};
    finishImport(result, {image.icc.data, image.icc.size}, image.alphaPlane != nullptr);
    return result;
}

}  // namespace kalim::codec
