#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/PictureOrigins.h"
#include "kalimkit/host/seat/EnvironmentScope.h"

namespace kalim::cli {

// A canvas without a screen for one document, as large as it was where that was saved. While it
// lives its environment is the current one.
class OpenedCanvas {
public:
    // With one pixel a point, or as many as where the document was saved. The device must outlive
    // it.
    OpenedCanvas(gfx::Device& device, const Document& document, bool isOnePixelAPoint);

    // Takes the document of the file, whose picture it uses up. Nothing on success, else what is
    // wrong, without the file's name.
    std::optional<std::string> open(OpenedFile& opened);
    // The picture of a file without a document, which is used up as well; null where there is no
    // room for it.
    gfx::ImageRef takePicture(OpenedFile& opened) { return _origins.make(_device, opened); }
    MDrawView& canvas() { return *_canvas; }
    const PictureOrigins& origins() const { return _origins; }

private:
    gfx::Device& _device;
    EnvironmentScope _scope;
    PictureOrigins _origins;
    std::shared_ptr<MDrawView> _canvas;
};

}  // namespace kalim::cli
