#include <libheif/heif.h>

#include <algorithm>
#include <cstddef>

#include "kalimkit/codec/imports/Import.h"
#include "kalimkit/codec/imports/Library.h"

namespace kalim::codec {

namespace {

// The functions of the library that are used.
struct HeicLibrary {
    static const HeicLibrary& shared() {
        static const HeicLibrary library;
        return library;
    }

    HeicLibrary() {
        library.find("heif_context_alloc", make)
            .find("heif_context_free", free)
            .find("heif_context_set_max_decoding_threads", setThreads)
            .find("heif_context_set_maximum_image_size_limit", setLongestSide)
            .find("heif_context_read_from_memory_without_copy", read)
            .find("heif_context_get_primary_image_handle", findPicture)
            .find("heif_image_handle_release", releaseHandle)
            .find("heif_image_handle_get_width", width)
            .find("heif_image_handle_get_height", height)
            .find("heif_image_handle_has_alpha_channel", hasAlpha)
            .find("heif_image_handle_is_premultiplied_alpha", isPremultiplied)
            .find("heif_image_handle_get_luma_bits_per_pixel", bitDepth)
            .find("heif_image_handle_get_raw_color_profile_size", profileSize)
            .find("heif_image_handle_get_raw_color_profile", profile)
            .find("heif_decode_image", decode)
            .find("heif_image_release", releaseImage)
            .find("heif_image_get_width", imageWidth)
            .find("heif_image_get_height", imageHeight)
            .find("heif_image_get_plane_readonly", plane);
    }

    Library library{KALIM_HEIF_LIBRARY};
    decltype(&heif_context_alloc) make = nullptr;
    decltype(&heif_context_free) free = nullptr;
    decltype(&heif_context_set_max_decoding_threads) setThreads = nullptr;
    decltype(&heif_context_set_maximum_image_size_limit) setLongestSide = nullptr;
    decltype(&heif_context_read_from_memory_without_copy) read = nullptr;
    decltype(&heif_context_get_primary_image_handle) findPicture = nullptr;
    decltype(&heif_image_handle_release) releaseHandle = nullptr;
    decltype(&heif_image_handle_get_width) width = nullptr;
    decltype(&heif_image_handle_get_height) height = nullptr;
    decltype(&heif_image_handle_has_alpha_channel) hasAlpha = nullptr;
    decltype(&heif_image_handle_is_premultiplied_alpha) isPremultiplied = nullptr;
    decltype(&heif_image_handle_get_luma_bits_per_pixel) bitDepth = nullptr;
    decltype(&heif_image_handle_get_raw_color_profile_size) profileSize = nullptr;
    decltype(&heif_image_handle_get_raw_color_profile) profile = nullptr;
    decltype(&heif_decode_image) decode = nullptr;
    decltype(&heif_image_release) releaseImage = nullptr;
    decltype(&heif_image_get_width) imageWidth = nullptr;
    decltype(&heif_image_get_height) imageHeight = nullptr;
    decltype(&heif_image_get_plane_readonly) plane = nullptr;
};

// The main picture of a file. The library turns it upright as the file says.
class HeicReader {
public:
    HeicReader(ByteSpan bytes, const DecodeLimits& limits) : _context(_library.make()) {
        if (!_context) {
            _problem = notEnoughMemory;
            return;
        }
        // A process that is locked in has one thread for this.
        _library.setThreads(_context, 0);
        // Beyond the picture's edge it may be coded in a whole block.
        constexpr int largestBlock = 64;
        _library.setLongestSide(_context, limits.maxSide + largestBlock);
        heif_error error = _library.read(_context, bytes.data(), bytes.size(), nullptr);
        if (error.code == heif_error_Ok) error = _library.findPicture(_context, &_handle);
        if (error.code != heif_error_Ok) fail(error);
    }
    ~HeicReader() {
        if (_image) _library.releaseImage(_image);
        if (_handle) _library.releaseHandle(_handle);
        if (_context) _library.free(_context);
    }
    HeicReader(const HeicReader&) = delete;
    HeicReader& operator=(const HeicReader&) = delete;

    // Empty where nothing is wrong so far.
    const std::string& problem() const { return _problem; }
    std::uint32_t width() const { return positive(_library.width(_handle)); }
    std::uint32_t height() const { return positive(_library.height(_handle)); }
    int bitDepth() const { return std::max(0, _library.bitDepth(_handle)); }
    bool hasAlpha() const { return _library.hasAlpha(_handle) != 0; }
    bool isPremultiplied() const { return _library.isPremultiplied(_handle) != 0; }
    Bytes profile() const {
        Bytes bytes(_library.profileSize(_handle));
        const bool isThere =
            !bytes.empty() && _library.profile(_handle, bytes.data()).code == heif_error_Ok;
        return isThere ? bytes : Bytes();
    }
    bool decode() {
        const heif_error error = _library.decode(_handle, &_image, heif_colorspace_RGB,
                                                 heif_chroma_interleaved_RGBA, nullptr);
        if (error.code != heif_error_Ok) fail(error);
        return error.code == heif_error_Ok;
    }
    // False where the picture is another one than was announced.
    bool copy(gfx::Bitmap& bitmap) const;

private:
    static std::uint32_t positive(int side) {
        return side > 0 ? static_cast<std::uint32_t>(side) : 0;
    }
    void fail(const heif_error& error) {
        const bool lacksMemory = error.code == heif_error_Memory_allocation_error &&
                                 error.subcode != heif_suberror_Security_limit_exceeded;
        std::string reason = error.message;
        std::erase(reason, '\n');
        _problem = lacksMemory ? notEnoughMemory : "the HEIC data are damaged (" + reason + ")";
    }

    const HeicLibrary& _library = HeicLibrary::shared();
    heif_context* _context = nullptr;
    heif_image_handle* _handle = nullptr;
    heif_image* _image = nullptr;
    std::string _problem;
};

bool HeicReader::copy(gfx::Bitmap& bitmap) const {
    int stride = 0;
    const std::uint8_t* const pixels = _library.plane(_image, heif_channel_interleaved, &stride);
    if (!pixels || _library.imageWidth(_image, heif_channel_interleaved) != bitmap.width() ||
        _library.imageHeight(_image, heif_channel_interleaved) != bitmap.height())
        return false;
    for (int y = 0; y < bitmap.height(); ++y) {
        const std::uint8_t* from = pixels + std::ptrdiff_t{stride} * y;
        std::uint8_t* to = bitmap.row(y);
        for (int x = 0; x < bitmap.width(); ++x, from += 4, to += 4) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            to[3] = from[3];
        }
    }
    return true;
}

}  // namespace

std::optional<std::string> loadHeic() {
    if (HeicLibrary::shared().library.isWhole()) return std::nullopt;
    return Library::advice("HEIC", KALIM_HEIF_LIBRARY);
}

DecodeResult readHeic(ByteSpan bytes, const DecodeLimits& limits) {
    HeicReader reader(bytes, limits);
    if (!reader.problem().empty()) return importFailure(reader.problem());
    DecodeResult result;
    result.error = sizeProblem(reader.width(), reader.height(), limits);
    if (result.error) return result;
    if (!reader.decode()) return importFailure(reader.problem());
    if (!allocatePixels(result, reader.width(), reader.height(), limits)) return result;
    if (!reader.copy(result.bitmap)) return importFailure("the HEIC data are damaged");
    result.imported = {reader.bitDepth(), {}};
    finishImport(result, reader.profile(), reader.hasAlpha() && !reader.isPremultiplied());
    return result;
}

}  // namespace kalim::codec
