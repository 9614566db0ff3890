#pragma once

#include <memory>

#include "kalimkit/canvas/CanvasPointer.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

class TesselViewController;

// The pointer on the editor's canvas.
class KALIM_API EditorPointer : public CanvasPointer {
public:
    explicit EditorPointer(std::weak_ptr<TesselViewController> editor);

    std::shared_ptr<MDrawView> canvas() const override;

protected:
    bool isCovered() const override;

private:
    // Held by the host as long as it is shown; weak, because a message of its may end that.
    std::weak_ptr<TesselViewController> _editor;
};

}  // namespace kalim
