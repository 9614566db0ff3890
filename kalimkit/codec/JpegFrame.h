#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::codec {

// What a JPEG file says of its picture before the pixels come, as far as it is about where they
// lie. It is read without a library, so that pages need none before they save.
struct JpegFrame {
    struct Colour {
        std::uint8_t identifier = 0;
        // Of so many samples side by side, where others have fewer or more.
        int across = 1;
        int down = 1;
    };

    // Nothing for a file without a frame, or with one that no decoder takes.
    static std::optional<JpegFrame> read(ByteSpan file);

    // The stored pixels that some blocks of all colours cover exactly, the fewest. They lie in
    // rows from the stored top left corner on.
    gfx::PixelSize cell() const;
    // Tells of a progressive picture whether some bits of a colour never come. Decoders smooth
    // such a picture over several blocks.
    bool lacksBits(ByteSpan file) const;

    gfx::PixelSize storedSize;
    gfx::ImageOrientation orientation = gfx::ImageOrientation::Up;
    bool isProgressive = false;
    std::vector<Colour> colours;
};

// What follows the marker of the next scan, empty behind the last. `rest` goes on behind that
// header; it ends at the end marker, behind which some cameras keep further pictures.
ByteSpan nextJpegScan(ByteSpan& rest);

}  // namespace kalim::codec
