#pragma once

#include <memory>

#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/screen/EditorStage.h"

namespace kalim {

// The button below the picture that shows the pen and opens the panel. Until the user has done so
// once, a ring points to it.
class PenButton {
public:
    explicit PenButton(const EditorStage& stage) : _stage(stage) {}

    // It is there, and not to be seen yet.
    void make(std::weak_ptr<TesselPenViewDelegate> delegate);
    // Null until it is made.
    const std::shared_ptr<TesselPenView>& view() const { return _view; }

    // ---- the ring
    // Asks the user's settings whether it is wanted.
    void allowRing();
    void ring(bool isOn) { _view->ringAnimationOp(isOn ? 1 : 0); }
    // The user has found the button: never again.
    void endRing();

    // ---- coming and going
    // Whether it comes to the eye once the picture is there.
    bool shouldBlink() const { return _shouldBlink; }
    void setShouldBlink(bool blinks) { _shouldBlink = blinks; }
    void vanish() { _view->setAlpha(0); }
    void appear() { _view->setAlpha(1); }
    void fade(double alpha);
    // Springs up from nothing.
    void pop();

private:
    const EditorStage& _stage;
    std::shared_ptr<TesselPenView> _view;
    bool _shouldBlink = false;
};

}  // namespace kalim
