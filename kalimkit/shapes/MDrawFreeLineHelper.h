#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/ui/loop/DisplayLink.h"

namespace kalim {

// What the canvas hears of the drawing under construction. Every message is optional.
class KALIM_API MDrawFreeLineHelperDelegate {
public:
    virtual ~MDrawFreeLineHelperDelegate() = default;

    // The drawing is finished.
    virtual void drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& /*freeline*/) {}
    // Its alpha has changed. Null at the step that has finished it.
    virtual void drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>& /*freeline*/) {}
};

// The canvas's companion for freehand drawing. It owns the drawing under construction, lets strokes
// that follow each other quickly join it, and after a pause fades it in and finishes it. Idle
// without a drawing, building with one, fading while the display link runs. It holds its delegate
// weakly, and itself alive until a message returns.
class KALIM_API MDrawFreeLineHelper : public std::enable_shared_from_this<MDrawFreeLineHelper> {
public:
    static std::shared_ptr<MDrawFreeLineHelper> init();
    MDrawFreeLineHelper(const MDrawFreeLineHelper&) = delete;
    MDrawFreeLineHelper& operator=(const MDrawFreeLineHelper&) = delete;

    // ---- a stroke, from its start to its end
    // The drawing that a starting stroke belongs to: a new one when idle or when the present one is
    // of another kind and therefore finished, else the present one, whose fade stops. The caller
    // sets its start point. The kind is derived from MDrawFreeline.
    std::shared_ptr<MDrawFreeline> freelineTool(const ToolClass& kind = MDrawFreeline::Class());
    // The stroke has ended. A valid drawing starts to fade; others wait for more strokes.
    void drawPause();
    // Finishes the drawing at once without a message.
    void reset();
    // Stops a fade and puts its alpha back to the start.
    void initProperty();

    bool isFreelineDrawing() const { return _freeline != nullptr; }
    // Yields the present drawing; null when idle.
    const std::shared_ptr<MDrawFreeline>& freeline() const { return _freeline; }
    // False once a further stroke has joined the present drawing.
    bool firstFreelinPart() const { return _firstFreelinPart; }
    void setFirstFreelinPart(bool isFirst) { _firstFreelinPart = isFirst; }
    // When false, a pause finishes the drawing without a fade.
    bool enable() const { return _enable; }
    void setEnable(bool enable) { _enable = enable; }

    std::shared_ptr<MDrawFreeLineHelperDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<MDrawFreeLineHelperDelegate> delegate) {
        _delegate = std::move(delegate);
    }

private:
    MDrawFreeLineHelper() = default;
    // Does one step of the fade.
    void displayLink();
    void finalizeFreeline();
    void complete();

    bool _enable = true;
    bool _firstFreelinPart = true;
    std::shared_ptr<MDrawFreeline> _freeline;
    // Goes with this object, and so may call it back by a plain pointer.
    std::unique_ptr<ui::DisplayLink> _displayLink;
    double _alpha = 0;
    std::weak_ptr<MDrawFreeLineHelperDelegate> _delegate;
};

}  // namespace kalim
