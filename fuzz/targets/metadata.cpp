// What a file tells beside its pixels, carried into a new file of each format in each mode.

#include <array>

#include "fuzz/Decoding.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/Encode.h"

namespace {

using namespace kalim;
using codec::FileFormat;

codec::Bytes freshFile(FileFormat format) {
    const gfx::Bitmap bitmap(2, 2);
    codec::Bytes file;
    if (format == FileFormat::Jpeg) codec::encodeJpeg(bitmap, 90, file);
    if (format == FileFormat::Png) codec::encodePng(bitmap, file);
    if (format == FileFormat::Webp) codec::encodeWebp(bitmap, 90, file);
    return file;
}

}  // namespace

KALIM_FUZZ(metadata, input) {
    constexpr std::array formats{FileFormat::Jpeg, FileFormat::Png, FileFormat::Webp};
    static const std::array fresh{freshFile(formats[0]), freshFile(formats[1]),
                                  freshFile(formats[2])};
    fuzz::Numbers numbers(input);
    const auto mode = static_cast<codec::Metadata>(numbers.below(3));
    const auto format = static_cast<std::size_t>(numbers.below(3));
    const codec::MetadataFacts facts{formats[format], 2, 2,
                                     static_cast<gfx::ImageOrientation>(numbers.below(8)),
                                     numbers.below(2) == 1};
    codec::Bytes file = fresh[format];
    const auto carried = codec::carriedMetadata(numbers.rest(), mode, facts);
    fuzz::require(!codec::addMetadata(file, carried), "data go into a fresh file");
    fuzz::require(!codec::decode(file, "file", fuzz::smallPictures).error,
                  "the file can be read with its data");
    // What was carried is what is carried: nothing in it was out of form.
    if (mode != codec::Metadata::Safe) return;
    const auto again = codec::carriedMetadata(file, mode, facts);
    fuzz::require(again.exif == carried.exif, "safe data stay as they are");
}
