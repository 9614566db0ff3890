#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// What a picture's file tells about a person besides the picture.
struct PersonalTraces {
    // Where it was taken or what place it shows.
    bool place = false;
    // Whose camera or picture it is: owner, maker, holder of the rights.
    bool owner = false;
    // That of the camera or of its lens.
    bool serialNumber = false;

    PersonalTraces& operator|=(const PersonalTraces& other) {
        place |= other.place;
        owner |= other.owner;
        serialNumber |= other.serialNumber;
        return *this;
    }
    bool operator==(const PersonalTraces&) const = default;
};

// Reads what EXIF, XMP and IPTC say in a JPEG, PNG or WebP file. What is empty or damaged says
// nothing.
KALIM_API PersonalTraces personalTraces(ByteSpan file);

// ---- the parts, each without the prefix that it has in a JPEG

// A TIFF structure.
PersonalTraces tracesInExif(ByteSpan exif);
// A packet of XML.
PersonalTraces tracesInXmp(ByteSpan xmp);
// Photoshop's resources, or the datasets of IPTC that stand in one of them.
PersonalTraces tracesInIptc(ByteSpan iptc);

}  // namespace kalim::codec
