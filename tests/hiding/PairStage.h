#pragma once

#include <memory>
#include <string>

#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/host/files/PictureOrigins.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "tests/canvas/CanvasHost.h"
#include "tests/hiding/PairSources.h"

namespace kalim::test {

// A canvas with one of a pair's two files.
class PairStage : public CanvasHost {
public:
    PairStage(const PairSource& source, bool isOther);

    // ---- drawing; pixels of the upright picture
    gfx::Rect secret() const;
    ToolRef patch(MosaicStyle style, const gfx::Rect& pixels);
    // One that holds the pixels when it is turned so, radians.
    ToolRef turnedPatch(MosaicStyle style, const gfx::Rect& pixels, double angle);
    // A magnifier beside the pixels that shows them larger, turned by half a radian.
    void magnify(const gfx::Rect& pixels);
    // An arrow, freehand ink, a text and an ellipse across the secret's edges.
    void drawAcross();
    // All but the left half of the secret, turned.
    void cutThrough();

    // ---- what leaves the canvas, as a whole file
    codec::Bytes saved(const gfx::ImageRef& image, const codec::SavingOptions& options) const;
    codec::Bytes sealed(codec::Metadata metadata);
    static codec::Bytes plain(const gfx::ImageRef& image);

    // As it was decoded, upright.
    gfx::ImageRef picture;

private:
    gfx::Rect onCanvas(const gfx::Rect& pixels) const;
    ToolRef add(const ToolRef& tool, const gfx::Rect& box);

    const PairSource& _source;
    PictureOrigins _origins;
};

}  // namespace kalim::test
