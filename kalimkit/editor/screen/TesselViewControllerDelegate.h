#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

class TesselViewController;

// What a host hears from the editor. The editor never takes itself off the screen: the host does,
// in answer to either message, and may let go of the editor while it answers.
class KALIM_API TesselViewControllerDelegate {
public:
    virtual ~TesselViewControllerDelegate() = default;

    // The user confirmed. The image is the picture with all that was drawn; null when there was
    // nothing to export. Optional.
    virtual void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                        const gfx::ImageRef& /*image*/) {}
    // The user closed the editor: nothing was drawn, or it is to be discarded.
    virtual void close() = 0;
};

}  // namespace kalim
