#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/json/JsonValue.h"
#include "kalimkit/tool/ToolDetail.h"
#include "kalimkit/tool/ToolProperty.h"

namespace kalim {

// The picture of a document, as the file that it came in. Whoever reads files fills and looks at
// the bytes; nothing else here depends on them.
struct DocumentPicture {
    // Such as "image/jpeg".
    std::string mediaType;
    // Pixels of the upright picture.
    gfx::PixelSize size;
    // Of the file's bytes, see Sha256.h.
    std::string sha256;
    // The bytes themselves, unchanged; or else, where they lie beside the document, the path from
    // the document's folder to them.
    std::string data;
    std::string file;
    // Keys that are not known here; they are written back.
    JsonValue::Object others;
};

// How canvas points lie over the picture.
struct DocumentCanvas {
    // Where the picture lies, canvas points; empty without one.
    gfx::Rect pictureRect;
    gfx::ColorRef background;
    // Of a canvas whose points are the picture's, how many its longer side has, see
    // MDrawView::setCanvasBasis; 0 for one that was settled by its first view. Of the latter, that
    // view's bounds (canvas points) and how many pixels of its screen made a point.
    double basis = 0;
    gfx::Rect bounds;
    double scale = 1;
    // What goes beyond the picture is cut at its edge, see MDrawView::setClipsToPicture.
    bool clips = false;
    // It mends what costs people work, see MDrawView::setForgiving: some of its tools, such as the
    // dots of taps, are none elsewhere.
    bool forgiving = false;
    // The colours that outline texts, by the texts' colours; see
    // MDrawView::setTextMaskColorsParForTextColors.
    std::vector<std::pair<gfx::ColorRef, gfx::ColorRef>> textOutlines;
    JsonValue::Object others;
};

struct DocumentMeasuring {
    // See MDrawView::setCalibration and what stands there beside it.
    double calibration = 0;
    std::string unit;
    bool show = false;
    JsonValue::Object others;
};

// A tool as values: all that makes it, and nothing that follows from it.
struct DocumentTool {
    std::string className;
    gfx::Point startPoint;
    gfx::Point endPoint;
    // Tools that share a colour hold the same object.
    gfx::ColorRef color;
    double lineWidth = 0;
    std::uint64_t drawType = 0;
    // Radians.
    double rotateAngle = 0;
    double lastRotateAngle = 0;
    // How the picture was turned when the tool was made, see MDrawTool::quarterTurns.
    int quarterTurns = 0;
    // See MDrawTool::groups and isLocked.
    std::vector<std::int64_t> groups;
    bool isLocked = false;
    // What only its kind has, by name.
    std::vector<std::pair<std::string, ToolDetailValue>> details;
    // What was chosen of its look, see ToolProperty.
    ToolPropertyValues properties;
    // Keys that are not known; of a class that is not known, all of them, as they were read.
    JsonValue::Object others;
    bool isOfKnownClass = true;
};

// A picture and what was drawn on it, as a value: what the file NAME.kalim holds. See
// docs/documents.md.
struct Document {
    static constexpr int latestVersion = 1;

    // The program that saved it last.
    std::string generator;
    // Nothing for a canvas without a picture.
    std::optional<DocumentPicture> picture;
    PictureCut cut;
    DocumentCanvas canvas;
    DocumentMeasuring measuring;
    // In drawing order.
    std::vector<DocumentTool> tools;
    // It can be given away: what was hidden or cut off is not in the picture any more.
    bool isSealed = false;
    JsonValue::Object others;
};

}  // namespace kalim
