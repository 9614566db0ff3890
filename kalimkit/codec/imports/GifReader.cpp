#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "kalimkit/codec/imports/Import.h"

namespace kalim::codec {

namespace {

struct GifCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

// The first frame of a file, on the whole of its screen.
class GifReader {
public:
    explicit GifReader(ByteSpan bytes) : _rest(bytes) {
        int error = 0;
        _gif.reset(DGifOpen(this, onBytesWanted, &error));
        if (!_gif) fail(error);
    }

    // What is wrong, if anything, after a step that has failed.
    const std::string& problem() const { return _problem; }
    bool findFrame();
    bool readPixels(gfx::Bitmap& bitmap);

    // A frame that leaves the screen enlarges it.
    std::uint32_t width() const { return side(_gif->SWidth, image().Left, image().Width); }
    std::uint32_t height() const { return side(_gif->SHeight, image().Top, image().Height); }

private:
    static int onBytesWanted(GifFileType* gif, GifByteType* target, int count) {
        GifReader& reader = *static_cast<GifReader*>(gif->UserData);
        const std::size_t given = std::min(reader._rest.size(), static_cast<std::size_t>(count));
        std::memcpy(target, reader._rest.data(), given);
        reader._rest = reader._rest.subspan(given);
        reader._isAtEnd = reader._isAtEnd || given < static_cast<std::size_t>(count);
        return static_cast<int>(given);
    }

    const GifImageDesc& image() const { return _gif->Image; }
    static std::uint32_t side(int screen, int begin, int length) {
        return static_cast<std::uint32_t>(std::max(screen, begin + length));
    }
    bool fail(int error) {
        if (error == D_GIF_ERR_EOF_TOO_SOON) _isAtEnd = true;
        _problem = error == D_GIF_ERR_NOT_ENOUGH_MEM ? notEnoughMemory
                   : _isAtEnd                        ? "the GIF data end too early"
                                                     : "the GIF data are damaged";
        return false;
    }
    bool readExtension();
    bool readRow(std::uint8_t* row, const ColorMapObject& colors);

    ByteSpan _rest;
    bool _isAtEnd = false;
    std::unique_ptr<GifFileType, GifCloser> _gif;
    std::string _problem;
    // The colour that is none.
    std::optional<int> _transparent;
    std::vector<GifPixelType> _indexes;
};

bool GifReader::readExtension() {
    constexpr std::size_t flags = 1;
    constexpr std::size_t color = 4;
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(_gif.get(), &code, &block) == GIF_ERROR) return fail(_gif->Error);
    if (code == GRAPHICS_EXT_FUNC_CODE && block && block[0] >= color && (block[flags] & 1U) != 0)
        _transparent = block[color];
    while (block) {
        if (DGifGetExtensionNext(_gif.get(), &block) == GIF_ERROR) return fail(_gif->Error);
    }
    return true;
}

bool GifReader::findFrame() {
    if (!_gif) return false;
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(_gif.get(), &type) == GIF_ERROR) return fail(_gif->Error);
        if (type == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(_gif.get()) != GIF_ERROR || fail(_gif->Error);
        if (type == EXTENSION_RECORD_TYPE && !readExtension()) return false;
        if (type == TERMINATE_RECORD_TYPE) {
            _problem = "the GIF holds no picture";
            return false;
        }
    }
}

bool GifReader::readRow(std::uint8_t* row, const ColorMapObject& colors) {
    if (DGifGetLine(_gif.get(), _indexes.data(), image().Width) == GIF_ERROR)
        return fail(_gif->Error);
    for (std::size_t x = 0; x < _indexes.size(); ++x) {
        const int index = _indexes[x];
        if (index == _transparent || index >= colors.ColorCount) continue;
        const GifColorType& color = colors.Colors[index];
        const std::array<std::uint8_t, 4> pixel{color.Blue, color.Green, color.Red, 255};
        std::ranges::copy(pixel, row + 4 * x);
    }
    return true;
}

bool GifReader::readPixels(gfx::Bitmap& bitmap) {
    const ColorMapObject* const colors = image().ColorMap ? image().ColorMap : _gif->SColorMap;
    if (!colors) return fail(D_GIF_ERR_NO_COLOR_MAP);
    std::memset(bitmap.data(), 0, bitmap.byteCount());
    _indexes.resize(static_cast<std::size_t>(image().Width));
    // From which row on, and how far apart, of an interlaced frame.
    constexpr std::array<std::array<int, 2>, 4> passes{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
    constexpr std::array<std::array<int, 2>, 1> onePass{{{0, 1}}};
    const auto readPass = [&](const std::array<int, 2>& pass) {
        for (int y = pass[0]; y < image().Height; y += pass[1]) {
            if (!readRow(bitmap.row(image().Top + y) + std::ptrdiff_t{4} * image().Left, *colors))
                return false;
        }
        return true;
    };
    return image().Interlace ? std::ranges::all_of(passes, readPass)
                             : std::ranges::all_of(onePass, readPass);
}

}  // namespace

DecodeResult readGif(ByteSpan bytes, const DecodeLimits& limits) {
    GifReader reader(bytes);
    if (!reader.findFrame()) return importFailure(reader.problem());
    DecodeResult result;
    result.error = sizeProblem(reader.width(), reader.height(), limits);
    if (result.error || !allocatePixels(result, reader.width(), reader.height(), limits))
        return result;
    if (!reader.readPixels(result.bitmap)) result.error = reader.problem();
    result.imported = {8, {}};
    return result;
}

}  // namespace kalim::codec
