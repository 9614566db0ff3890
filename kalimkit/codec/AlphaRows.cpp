#include "kalimkit/codec/AlphaRows.h"

#include <algorithm>

namespace kalim::codec {

bool isOpaque(const gfx::Bitmap& bitmap) {
    for (std::size_t i = 3; i < bitmap.byteCount(); i += 4) {
        if (bitmap.data()[i] != 255) return false;
    }
    return true;
}

void premultiplyRow(std::uint8_t* bgra, std::size_t pixelCount) {
    for (std::size_t i = 0; i < 4 * pixelCount; i += 4) {
        const unsigned alpha = bgra[i + 3];
        if (alpha == 255) continue;
        for (std::size_t part = i; part < i + 3; ++part) {
            bgra[part] = static_cast<std::uint8_t>((bgra[part] * alpha + 127) / 255);
        }
    }
}

void straightenRow(const std::uint8_t* premultiplied, std::uint8_t* straight,
                   std::size_t pixelCount) {
    for (std::size_t i = 0; i < 4 * pixelCount; i += 4) {
        const unsigned alpha = premultiplied[i + 3];
        if (alpha == 255) {
            std::copy_n(premultiplied + i, 4, straight + i);
            continue;
        }
        for (std::size_t part = i; part < i + 3; ++part) {
            const unsigned whole =
                alpha == 0 ? 0 : (premultiplied[part] * 255U + alpha / 2) / alpha;
            straight[part] = static_cast<std::uint8_t>(std::min(whole, 255U));
        }
        straight[i + 3] = static_cast<std::uint8_t>(alpha);
    }
}

}  // namespace kalim::codec
