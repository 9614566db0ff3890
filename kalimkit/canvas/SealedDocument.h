#pragma once

#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// A document that may be given away, and the picture that belongs to it, whose file its maker still
// has to write into it: the part that a crop leaves, unturned, with every patch burnt in.
struct SealedDocument {
    Document document;
    // Null for a canvas without a picture, or where there is no room for it.
    gfx::ImageRef picture;
    // How that came from the canvas's one, so that its file can keep what no patch covers.
    ExportedPicture exported;
};

}  // namespace kalim
