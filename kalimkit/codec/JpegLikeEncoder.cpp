#include <algorithm>
#include <cstdlib>
#include <limits>

#include "kalimkit/codec/JpegLaying.h"
#include "kalimkit/codec/JpegWriter.h"
#include "kalimkit/codec/StoredResult.h"

namespace kalim::codec {

namespace {

bool isGrey(const gfx::Bitmap& bitmap) {
    for (std::size_t i = 0; i < bitmap.byteCount(); i += 4) {
        const std::uint8_t* const bgra = bitmap.data() + i;
        if (bgra[0] != bgra[1] || bgra[1] != bgra[2]) return false;
    }
    return true;
}

// Encodes pixels as the file was encoded whose header it reads.
class JpegLikeEncoder : public JpegReader {
public:
    explicit JpegLikeEncoder(ByteSpan file) : JpegReader(file), _writer(*this) {}

    // 0 where the library fails.
    int quality();
    // Of a coding without colours, usual ones are made.
    bool encode(const StoredResult& result, JpegCoding coding);

    // Of the new file, when it is encoded.
    const JpegCoding& coding() const { return _coding; }
    ByteSpan bytes() const { return _writer.bytes(); }

private:
    // These may jump.
    int nearestQuality();
    void addUsualColours();
    void writeRows(const StoredResult& result);

    JpegWriter _writer;
    JpegCoding _coding;
    Bytes _row;
};

int JpegLikeEncoder::quality() {
    if (setjmp(_failed) != 0) return 0;
    _writer.create();
    return nearestQuality();
}

// The tables of a quality are known to the library alone. It has made those of the result when it
// returns.
int JpegLikeEncoder::nearestQuality() {
    constexpr int best = 100;
    jpeg_compress_struct& scratch = _writer.info();
    scratch.input_components = JpegCoding::maxColours;
    scratch.in_color_space = JCS_RGB;
    jpeg_set_defaults(&scratch);
    const int slot = _info.comp_info[0].quant_tbl_no;
    const bool isThere =
        slot >= 0 && slot < NUM_QUANT_TBLS && _info.quant_tbl_ptrs[slot] != nullptr;
    int nearest = JpegCoding::usualQuality;
    long least = std::numeric_limits<long>::max();
    for (int quality = best; isThere && quality > 0; --quality) {
        jpeg_set_quality(&scratch, quality, TRUE);
        long difference = 0;
        for (int i = 0; i < DCTSIZE2; ++i) {
            difference += std::labs(long{scratch.quant_tbl_ptrs[0]->quantval[i]} -
                                    long{_info.quant_tbl_ptrs[slot]->quantval[i]});
        }
        if (difference < least) nearest = quality;
        least = std::min(least, difference);
    }
    jpeg_set_quality(&scratch, nearest, TRUE);
    return nearest;
}

void JpegLikeEncoder::addUsualColours() {
    nearestQuality();
    _coding.space = JCS_YCbCr;
    _coding.colourCount = JpegCoding::maxColours;
    for (std::size_t i = 0; i < JpegCoding::maxColours; ++i) {
        JpegCoding::Colour& colour = _coding.colours[i];
        colour = {};
        colour.slot = i == 0 ? 0 : 1;
        const JQUANT_TBL* const table = _writer.info().quant_tbl_ptrs[colour.slot];
        std::copy_n(table->quantval, DCTSIZE2, colour.table.begin());
    }
}

bool JpegLikeEncoder::encode(const StoredResult& result, JpegCoding coding) {
    _coding = coding;
    _row.resize(std::size_t{4} * static_cast<std::size_t>(coding.size.width));
    if (setjmp(_failed) != 0) return false;
    _writer.create();
    if (_coding.space == JCS_UNKNOWN) addUsualColours();
    // A reader multiplies by a step of none, and the library divides by it.
    for (JpegCoding::Colour& colour : _coding.colours)
        std::ranges::replace(colour.table, UINT16{0}, UINT16{1});
    jpeg_compress_struct& output = _writer.info();
    output.input_components = 4;
    output.in_color_space = JCS_EXT_BGRX;
    _coding.apply(output);
    jpeg_start_compress(&_writer.info(), TRUE);
    writeRows(result);
    jpeg_finish_compress(&_writer.info());
    return true;
}

void JpegLikeEncoder::writeRows(const StoredResult& result) {
    jpeg_compress_struct& output = _writer.info();
    while (output.next_scanline < output.image_height) {
        for (JDIMENSION x = 0; x < output.image_width; ++x) {
            const std::uint8_t* const pixel =
                result.at(static_cast<int>(x), static_cast<int>(output.next_scanline));
            const int white = 255 - pixel[3];
            for (std::size_t part = 0; part < 3; ++part) {
                _row[4 * x + part] = static_cast<std::uint8_t>(std::min(pixel[part] + white, 255));
            }
        }
        JSAMPROW row = _row.data();
        jpeg_write_scanlines(&output, &row, 1);
    }
}

}  // namespace

LaidJpeg encodeLikeJpeg(const gfx::Bitmap& result, ByteSpan file) {
    LaidJpeg laid;
    laid.encodedAnew = "the result has no pixels";
    if (result.isEmpty()) return laid;
    JpegLikeEncoder encoder(file);
    laid.encodedAnew = encoder.readHeader() ? "" : encoder.error();
    if (!laid.encodedAnew.empty()) return laid;
    const gfx::ImageOrientation orientation = encoder.orientation();
    const StoredResult stored(result, PixelMap::upright(orientation, result.size()));
    const gfx::PixelSize size = withExchangedSides(result.size(), gfx::exchangesSides(orientation));
    JpegCoding coding = JpegCoding::of(encoder.info(), size);
    if (coding.space == JCS_GRAYSCALE && !isGrey(result)) coding.addNeutralColours();
    if (!encoder.encode(stored, coding)) {
        laid.encodedAnew = encoder.error();
        return laid;
    }
    laid.bytes.assign(encoder.bytes().begin(), encoder.bytes().end());
    laid.isGrey = encoder.coding().space == JCS_GRAYSCALE;
    return laid;
}

std::optional<int> jpegQuality(ByteSpan file) {
    JpegLikeEncoder encoder(file);
    const int quality = encoder.readHeader() ? encoder.quality() : 0;
    return quality > 0 ? std::optional(quality) : std::nullopt;
}

}  // namespace kalim::codec
