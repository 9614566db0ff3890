#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/PngText.h"

namespace kalim::codec {

// The data about its picture that a file has, whatever its format keeps them in.
struct MetadataSource {
    FileFormat format = FileFormat::Other;
    // Each is empty where the file has none; of several the first counts.
    Bytes exif;
    // With its continuation.
    Bytes xmp;
    // Photoshop's resources, or datasets of IPTC alone.
    Bytes photoshop;
    std::optional<PixelDensity> density;
    // In UTF-8 but for a JPEG's comments, whose encoding nobody knows.
    std::vector<std::string> comments;
    // Those of a PNG that are whole, but for the above.
    std::vector<PngText> texts;
    // What else the file has, without colours, pixels and what leads behind the file's end.
    std::vector<CarriedMetadata::Block> blocks;
};

MetadataSource readMetadata(ByteSpan file);

}  // namespace kalim::codec
