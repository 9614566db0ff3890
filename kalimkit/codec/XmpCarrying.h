#pragma once

#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/CarriedMetadata.h"

namespace kalim::codec {

// The packet without thumbnails and other pictures, and without what leads to pictures behind the
// file's end; with the file's own size and orientation where it tells them. Empty for what is no
// whole XML in single bytes, or defines entities of its own.
Bytes keptXmp(ByteSpan xmp, const MetadataFacts& facts);

// A packet with what stands in another one, which continues it.
Bytes joinedXmp(ByteSpan xmp, ByteSpan continuation);

// The rights that a packet tells of; empty without any.
std::string copyrightInXmp(ByteSpan xmp);

}  // namespace kalim::codec
