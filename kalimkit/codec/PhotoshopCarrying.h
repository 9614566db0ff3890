#pragma once

#include <string>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Photoshop's resources without thumbnails and other pictures, and without what is carried by
// itself: Exif, XMP, the profile. Datasets of IPTC that stand there without resources around them
// get one. What is damaged ends it.
Bytes keptPhotoshop(ByteSpan resources);

// The notice of copyright in the IPTC there; empty without one.
std::string copyrightInPhotoshop(ByteSpan resources);

}  // namespace kalim::codec
