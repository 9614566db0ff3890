#pragma once

#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/TiffStructure.h"

namespace kalim::codec {

// The fields that say how the picture was taken, each of the form that it has to have, and nothing
// else. Without a copyright of its own it gets the one handed in, if that says something.
TiffStructure safeExif(const TiffStructure& source, const MetadataFacts& facts,
                       const std::string& copyright);

// All but thumbnails and other pictures, the places of such, and what is no longer true.
TiffStructure keptExif(const TiffStructure& source, const MetadataFacts& facts);

// The orientation alone.
TiffStructure bareExif(const MetadataFacts& facts);

}  // namespace kalim::codec
