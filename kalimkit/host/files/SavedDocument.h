#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/host/files/PictureOrigins.h"

namespace kalim {

class MDrawView;

// How a document is written. Both at once are an error.
struct DocumentSaving {
    // It can be given away: nothing hidden or cut off is in it.
    bool isSealed = false;
    // Its picture's bytes stay in the file that they came from.
    bool isLinked = false;
    // What a sealed document's picture says beside its pixels.
    codec::Metadata metadata = codec::Metadata::Safe;
    // The picture's file is read once more in a process of its own, see codec/Sandbox.h.
    bool isSandboxed = false;
};

// The document of what is on the canvas as a text, for a file in the folder. Like every export it
// ends what is under way. A picture that came from no file is written as PNG, and a sealed one as
// PNG where it came from that, else as JPEG. Answers with nothing on success, else with what stands
// in the way.
KALIM_API std::optional<std::string> documentTextOf(MDrawView& canvas,
                                                    const PictureOrigins& origins,
                                                    const DocumentSaving& saving,
                                                    const std::string& folder, std::string& text);

// Whether a document in the folder, an empty one being that of the process, can be linked to a
// picture's file: it lies there or below.
KALIM_API bool isLinkable(const std::string& picture, const std::string& folder);

// Writes it in the place of a file, all of it or nothing. What is wrong begins with the path.
KALIM_API std::optional<std::string> saveDocument(MDrawView& canvas, const PictureOrigins& origins,
                                                  const DocumentSaving& saving,
                                                  const std::string& path);

}  // namespace kalim
