#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/DecodeResult.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// A file that an editor can go on with: a picture, a document, or a PNG picture with a document
// inside.
struct OpenedFile {
    // Those of the file itself; empty after an error that came before they were read.
    codec::Bytes bytes;
    // Where the file lies that the pixels came from; empty where that is in no file of its own.
    std::string picturePath;
    // Nothing for a picture. Where its picture lies beside it, `data` has that file's bytes as well
    // as `file` its place.
    std::optional<Document> document;
    // The document was found in a picture.
    bool isInside = false;
    // The pixels of the document's picture or of the file's own; none in a document without one.
    codec::DecodeResult picture;
    // What is wrong, one sentence that begins with the file's name.
    std::optional<std::string> error;
};

struct FileOpening {
    // A picture with a document inside counts as the picture that it shows.
    bool isFlat = false;
    // How pictures are decoded: codec::decodeSandboxed has it done in a process of its own.
    codec::Decoder decode = codec::decode;
    codec::DecodeLimits limits = {};
};

// The keyword under which a PNG picture carries a document.
inline constexpr const char* documentKeyword = "kalimkit";

// Reads a file, "-" being standard input, as far as it may be one of these, and decodes its
// picture. The hash of a document's picture has been found right then.
KALIM_API OpenedFile openFile(const std::string& path, const FileOpening& opening = {});
// The same of bytes that were read before, from standard input for "-".
KALIM_API OpenedFile openBytes(codec::Bytes bytes, const std::string& path,
                               const FileOpening& opening = {});
// Reads as much as the above need.
KALIM_API std::optional<std::string> readOpenable(const std::string& path, codec::Bytes& bytes);
// Whether these first bytes, 16 of them, may be those of a document.
KALIM_API bool mayBeDocument(codec::ByteSpan start);
// Whether a PNG picture carries a document, whatever state that is in.
KALIM_API bool hasDocumentInside(codec::ByteSpan file);

}  // namespace kalim
