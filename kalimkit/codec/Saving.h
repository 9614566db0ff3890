#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/PixelGrid.h"
#include "kalimkit/gfx/PixelRect.h"

namespace kalim::codec {

// What of a file's data about its picture goes along. The colours' profile always does.
enum class Metadata {
    // What tells of the picture: orientation, dates, camera, exposure, copyright, resolution.
    Safe,
    // All but the thumbnails, which would show what is hidden.
    Keep,
    None,
};

// The file that a result came from, and where its pixels are in the result.
struct SavingSource {
    // Empty for a result that came from no file.
    ByteSpan file;
    // What decode() made of it, turned upright: the result has these very pixels wherever nothing
    // was drawn. Null where the result is not at its scale; only data and colours go along then.
    const gfx::Bitmap* pixels = nullptr;
    // The part of the upright picture that the result shows, and where its corner lies in the
    // result, before that is turned: what lies beyond the part is drawn.
    gfx::PixelRect part;
    int x = 0;
    int y = 0;
    // Counter-clockwise, 0 to 3.
    int quarterTurns = 0;
    // Pixels of the upright picture that the result hides. Nothing that is written depends on what
    // the file has there.
    gfx::PixelRects hidden;
};

struct SavingOptions {
    // Any but Other.
    FileFormat format = FileFormat::Png;
    // 1 to 100, of a lossy format; nothing for that of the file, or 90 where it is of another
    // format.
    std::optional<int> quality;
    Metadata metadata = Metadata::Safe;
    // Of encodePicture(): in a process of its own, as by savePictureSandboxed().
    bool isSandboxed = false;
    // A result that is not at its source's scale takes the file's colours and quality all the
    // same. Without that it stays sRGB, in the usual quality.
    bool takesAfterFile = true;
};

struct SavedPicture {
    // A whole file; empty after an error.
    Bytes bytes;
    // One sentence without the file's name and a final full stop.
    std::optional<std::string> error;
    // Why pixels that nothing covers had to be encoded anew with a loss, one sentence of the same
    // kind; empty where they are those of the file.
    std::string encodedAnew;
};

// Writes a result as a file. What nothing covers stays what it is in the source's file: in a JPEG
// block by block as it is coded, in the others pixel by pixel, in the colours of the file's
// profile.
KALIM_API SavedPicture savePicture(const gfx::Bitmap& result, const SavingSource& source,
                                   const SavingOptions& options);

// How a file holds the pixels of its upright picture together; every pixel on its own for a file
// that says nothing of it.
KALIM_API gfx::PixelGrid pixelGrid(ByteSpan file);

}  // namespace kalim::codec
