#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/PngText.h"

namespace kalim::codec {

// The data about its picture that a file has, whatever its format keeps them in. It looks at the
// file's bytes. Exif, XMP and Photoshop's resources of more than 16 MiB each are passed over.
struct MetadataSource {
    // A segment or a chunk.
    struct Block {
        // As PictureChunk::type.
        std::uint32_t type = 0;
        ByteSpan data;
    };

    FileFormat format = FileFormat::Other;
    // Each is empty where the file has none; of several the first counts.
    Bytes exif;
    // With its continuation.
    Bytes xmp;
    // Photoshop's resources, or datasets of IPTC alone.
    Bytes photoshop;
    std::optional<PixelDensity> density;
    // Of a JPEG.
    std::vector<std::string> comments;
    // Of a PNG, those that are whole, but for the above; as texts in UTF-8 and as they stand there.
    struct Text {
        PngText text;
        Block block;
    };
    std::vector<Text> texts;
    // What else the file has, without colours, pixels and what leads behind the file's end.
    std::vector<Block> blocks;
};

MetadataSource readMetadata(ByteSpan file);

// A text whose encoding nobody tells, in UTF-8: what is none is read as Latin 1.
std::string asUtf8(std::string_view text);

}  // namespace kalim::codec
