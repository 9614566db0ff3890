#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::codec {

// What is true of the file that is written, whatever the data of the one before it say.
struct MetadataFacts {
    // Any but Other.
    FileFormat format = FileFormat::Png;
    // In pixels as they are stored, before the orientation turns them.
    int width = 0;
    int height = 0;
    gfx::ImageOrientation orientation = gfx::ImageOrientation::Up;
    // The stored pixels show the same part of the picture, at the same scale and the same way
    // round, so that places in it are where they were.
    bool hasSamePlaces = false;
};

// How many pixels lie on a length, as JFIF has it.
struct PixelDensity {
    // 0: a ratio of the sides alone, 1: per inch, 2: per centimetre.
    std::uint8_t unit = 0;
    std::uint16_t x = 1;
    std::uint16_t y = 1;

    bool operator==(const PixelDensity&) const = default;
};

// What goes along, ready for one format. The colours' profile is never among it.
struct CarriedMetadata {
    // A segment or a chunk of the new file's own format.
    struct Block {
        // As PictureChunk::type.
        std::uint32_t type = 0;
        Bytes data;
    };

    // A TIFF structure without a prefix; empty for none, as are the others.
    Bytes exif{};
    // A packet of XML.
    Bytes xmp{};
    // Photoshop's resources, IPTC among them.
    Bytes photoshop{};
    PixelDensity density{};
    std::vector<Block> blocks{};
};

// What of the source file's data goes along in the mode. A file that is damaged, or none, gives
// what can be read of it, and the orientation alone where there is nothing.
CarriedMetadata carriedMetadata(ByteSpan sourceFile, Metadata mode, const MetadataFacts& facts);

// Puts it into a file that has just been encoded in the format that it was made for, with nothing
// of its kind but a profile. Answers with nothing or with what stands in the way, as half a
// sentence; the file is as it was then.
std::optional<std::string> addMetadata(Bytes& freshFile, const CarriedMetadata& carried);

}  // namespace kalim::codec
