#include "kalimkit/codec/PictureSaver.h"

#include <utility>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/ColorProfiles.h"
#include "kalimkit/codec/EncodeSteps.h"
#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/MetadataSource.h"

namespace kalim::codec {

namespace {

using Samples = ColorConversion::Samples;

// Of pictures that are no JPEG, and that tell of no quality.
constexpr int usualQuality = 90;
constexpr const char* notAtItsScale = "it is not at the scale of its picture";

bool isInk(Samples samples) {
    return samples == Samples::Ink || samples == Samples::MissingInk;
}

void fitToPng(Bytes& profile, bool isGrey) {
    if (!pngTakes(profile, isGrey)) profile = tidiedProfile(profile);
    if (!profile.empty() && !pngTakes(profile, isGrey)) profile.clear();
}

gfx::ImageOrientation orientationOf(ByteSpan file) {
    return exifOrientation(readMetadata(file).exif);
}

}  // namespace

PictureSaver::PictureSaver(const gfx::Bitmap& result, const SavingSource& source,
                           const SavingOptions& options)
    : _result(result),
      _source(source),
      _options(options),
      _sourceFormat(fileFormat(source.file)),
      _colors(fileColors(source.file)),
      _rows(result, source) {}

SavedPicture PictureSaver::save() {
    chooseColors();
    const bool isJpeg = _options.format == FileFormat::Jpeg && _sourceFormat == FileFormat::Jpeg;
    if (isJpeg && !_options.quality && !isApart()) {
        saveLikeJpeg();
    } else {
        saveRows();
    }
    if (_saved.bytes.empty() && !_saved.error) _saved.error = "the picture cannot be written";
    if (!_saved.error) addData();
    return std::move(_saved);
}

// Inks become sRGB; so does what no way leads back to.
void PictureSaver::chooseColors() {
    const bool isGrey = _colors.samples == Samples::GreyBgra;
    if (isApart()) _colors = {};
    if (isInk(_colors.samples) || _colors.profile.empty()) return _colors.profile.clear();
    const bool changes = ColorConversion::make(_colors.profile, _colors.samples) != nullptr;
    if (_options.format == FileFormat::Png) fitToPng(_colors.profile, isGrey);
    _profile = isGrey ? colorfulProfile(_colors.profile) : _colors.profile;
    if (changes) _conversion = ColorConversion::makeBack(_profile);
    _rows.setConversion(_conversion.get());
    _losesColors = changes && !_conversion;
    if (_losesColors) _profile.clear();
    if (_profile.empty()) _colors.profile.clear();
}

ByteSpan PictureSaver::profile(bool isGrey) const {
    const bool isOwn = isGrey && _colors.samples == Samples::GreyBgra;
    return isOwn ? _colors.profile : _profile;
}

// ---- JPEG from JPEG

void PictureSaver::saveLikeJpeg() {
    LaidJpeg laid = laidJpeg();
    if (laid.bytes.empty()) {
        const std::string reason = std::move(laid.encodedAnew);
        readRaw();
        laid = encodeLikeJpeg(convertedResult(), _source.file);
        if (laid.bytes.empty()) _saved.error = laid.encodedAnew;
        laid.encodedAnew = reason;
    }
    _saved.bytes = std::move(laid.bytes);
    _saved.encodedAnew = std::move(laid.encodedAnew);
    _orientation = orientationOf(_source.file);
    const ByteSpan own = profile(laid.isGrey);
    addProfile(_saved.bytes, own.empty() ? ByteSpan(srgbProfile(laid.isGrey)) : own);
}

LaidJpeg PictureSaver::laidJpeg() {
    LaidJpeg laid;
    if (!_source.pixels) laid.encodedAnew = notAtItsScale;
    if (_losesColors) laid.encodedAnew = "no way leads back to the colours of its profile";
    if (!laid.encodedAnew.empty()) return laid;
    Bytes touched(_result.byteCount() / 4);
    for (int y = 0; y < _result.height(); ++y)
        _rows.markTouched(y, touched.data() + _result.stride() / 4 * static_cast<std::size_t>(y));
    if (!_conversion) return layIntoJpeg(_result, _source, touched);
    // The conversion takes longer than all the rest.
    _rows.setLeavesOut(_source.hidden.empty());
    laid = layIntoJpeg(convertedResult(), _source, touched);
    _rows.setLeavesOut(false);
    return laid;
}

gfx::Bitmap PictureSaver::convertedResult() const {
    auto converted = gfx::Bitmap::unwritten(_result.width(), _result.height());
    for (int y = 0; y < converted.height(); ++y) {
        _rows.read(y, converted.row(y));
        premultiplyRow(converted.row(y), static_cast<std::size_t>(converted.width()));
    }
    return converted;
}

// ---- others

void PictureSaver::saveRows() {
    readRaw();
    const bool canBeGrey =
        _options.format != FileFormat::Webp && _colors.samples == Samples::GreyBgra;
    _rows.setGrey(canBeGrey && _rows.isDrawnInGrey());
    encodeRows();
    if (!_source.file.empty()) _saved.encodedAnew = reasonOfLoss();
}

// Where no colour is converted, an opaque picture has the file's own pixels as it is.
void PictureSaver::readRaw() {
    if (!_source.pixels || _losesColors) return;
    if (!_conversion && _rows.isOpaque()) return;
    _raw = rawPicture(_source.file);
    if (!_raw.bitmap.isEmpty()) _rows.setRaw(_raw);
}

void PictureSaver::encodeRows() {
    const int quality = _options.quality.value_or(usualQuality);
    const ByteSpan own = profile(_rows.isGrey());
    const bool staysLossless = _sourceFormat == FileFormat::Webp && _colors.isLossless;
    switch (_options.format) {
        case FileFormat::Jpeg:
            _saved.error = encodeJpeg(_rows, own, quality, _saved.bytes);
            break;
        case FileFormat::Webp:
            _saved.error = encodeWebp(
                _rows, own, staysLossless ? std::nullopt : std::optional(quality), _saved.bytes);
            break;
        default:
            _saved.error = encodePng(_rows, own, _saved.bytes);
    }
}

std::string PictureSaver::reasonOfLoss() const {
    if (_losesColors) return "no way leads back to the colours of its profile";
    if (_options.format == FileFormat::Png) return {};
    if (isApart()) return notAtItsScale;
    if (_options.format == FileFormat::Jpeg) {
        if (_sourceFormat != FileFormat::Jpeg) return "it did not come from a JPEG picture";
        return "another quality is asked for";
    }
    if (_sourceFormat != FileFormat::Webp) return "it did not come from a WebP picture";
    return _colors.isLossless ? "" : "a WebP picture with a loss is encoded as a whole";
}

void PictureSaver::addData() {
    if (_source.file.empty()) return;
    MetadataFacts facts;
    facts.format = _options.format;
    facts.orientation = _orientation;
    const bool isTurned = gfx::exchangesSides(_orientation);
    facts.width = isTurned ? _result.height() : _result.width();
    facts.height = isTurned ? _result.width() : _result.height();
    if (_source.pixels) {
        const gfx::PixelSize size = _source.pixels->size();
        facts.hasSamePlaces = _result.size() == size && _source.quarterTurns == 0 &&
                              _source.part == gfx::PixelRect{0, 0, size.width, size.height} &&
                              _orientation == orientationOf(_source.file);
    }
    const CarriedMetadata carried = carriedMetadata(_source.file, _options.metadata, facts);
    _saved.error = addMetadata(_saved.bytes, carried);
    if (_saved.error) _saved.bytes.clear();
}

}  // namespace kalim::codec
