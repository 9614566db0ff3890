// A JPEG's coefficients under a drawing, in a part of the picture, turned.

#include "fuzz/Decoding.h"
#include "kalimkit/codec/JpegLaying.h"

KALIM_FUZZ(laying, input) {
    using namespace kalim;
    fuzz::Numbers numbers(input);
    codec::SavingSource source;
    source.quarterTurns = numbers.below(4);
    source.part = {numbers.below(64), numbers.below(64), numbers.below(128) + 1,
                   numbers.below(128) + 1};
    source.x = numbers.below(16);
    source.y = numbers.below(16);
    source.hidden = {{numbers.below(64), numbers.below(64), numbers.below(64), numbers.below(64)}};
    const int width = numbers.below(128) + 1;
    const int height = numbers.below(128) + 1;
    const int stride = numbers.below(64) + 1;
    source.file = numbers.rest();
    // The header decides what is read, as it does before anybody draws on the picture.
    if (codec::decode(source.file, "picture", fuzz::smallPictures).error) return;
    const gfx::Bitmap result(width, height);
    codec::Bytes touched(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t i = 0; i < touched.size(); i += static_cast<std::size_t>(stride))
        touched[i] = 1;
    const codec::LaidJpeg laid = codec::layIntoJpeg(result, source, touched);
    fuzz::require(laid.bytes.empty() || !codec::decode(laid.bytes, "laid").error,
                  "what was laid can be read");
    codec::encodeLikeJpeg(result, source.file);
}
