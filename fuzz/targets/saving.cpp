// A picture's file, drawn on and saved in each format, with its colours and data.

#include <algorithm>
#include <array>

#include "fuzz/Decoding.h"
#include "kalimkit/image/UprightBitmap.h"

KALIM_FUZZ(saving, input) {
    using namespace kalim;
    using codec::FileFormat;
    constexpr std::array formats{FileFormat::Jpeg, FileFormat::Png, FileFormat::Webp};
    fuzz::Numbers numbers(input);
    codec::SavingOptions options;
    options.format = formats[static_cast<std::size_t>(numbers.below(3))];
    options.metadata = static_cast<codec::Metadata>(numbers.below(3));
    const bool hidesSomething = numbers.below(2) == 1;
    codec::SavingSource source;
    source.file = numbers.rest();
    const codec::DecodeResult decoded = codec::decode(source.file, "picture", fuzz::smallPictures);
    if (decoded.error) return;
    const gfx::Bitmap upright = uprightBitmap(decoded.bitmap, decoded.orientation);
    source.pixels = &upright;
    source.part = {0, 0, upright.width(), upright.height()};
    gfx::Bitmap result = upright;
    std::fill_n(result.row(result.height() / 2), result.stride(), std::uint8_t{255});
    if (hidesSomething) source.hidden = {{0, result.height() / 2, result.width(), 1}};
    const codec::SavedPicture saved = codec::savePicture(result, source, options);
    fuzz::require(!saved.error, "a picture that was read can be saved");
    fuzz::require(!codec::decode(saved.bytes, "saved", fuzz::smallPictures).error,
                  "what was saved can be read");
}
