#pragma once

#include <memory>

#include "kalimkit/crop/CropBoard.h"
#include "kalimkit/crop/CropDrag.h"
#include "kalimkit/crop/CropEdge.h"
#include "kalimkit/ui/control/Loupe.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"

namespace kalim {

// The fingers: one that drags an edge or a corner of the frame, and those that move and zoom the
// picture under it. While one is down nothing is dark and nothing moves by itself; some time after
// the last one is up the frame goes back to the middle.
class CropHand {
public:
    explicit CropHand(CropBoard& board) : _board(board) {}

    // ---- on the frame
    // For drags that begin on its border; the delegate asks takes().
    void makePan(std::weak_ptr<ui::GestureDelegate> delegate);
    bool takes(const ui::Touch& touch);
    CropEdge edgeAt(gfx::Point p) const { return cropEdgeForPoint(p, _board.frame()); }
    // Drags the held edge or corner to a point.
    void dragTo(gfx::Point p);
    // What is held no longer is.
    void letGo() {
        _edge = CropEdge::None;
        hideLoupe();
    }

    // ---- on the picture
    void beginMoving();
    // Fingers may be left, or the picture may go on by itself.
    void endMoving();

    // ---- readings
    CropEdge edge() const { return _edge; }
    gfx::Point touchPoint() const { return _touchPoint; }
    const gfx::Rect& touchFrame() const { return _touchFrame; }
    bool keepsRotateButton() const { return _keepsRotateButton; }
    void setKeepsRotateButton(bool keeps) { _keepsRotateButton = keeps; }
    // Whether a second finger that comes at once undoes what the first has dragged. Off at first.
    void setTakesBack(bool takesBack) { _takesBack = takesBack; }

private:
    void pan(const ui::PanGestureRecognizer& pan);
    void takeBack();
    void showLoupe(gfx::Point p);
    void hideLoupe();
    void takeHold(gfx::Point p);
    void begin();

    CropBoard& _board;
    CropEdge _edge = CropEdge::None;
    // Where the finger landed whose drag may follow.
    gfx::Point _landingPoint;
    gfx::Point _touchPoint;
    gfx::Rect _touchFrame;
    CropLimits _limits;
    bool _keepsRotateButton = false;
    bool _takesBack = false;
    // When that was; and another finger has come so soon that the drag was not meant.
    ui::Time _landingTime = 0;
    // A fingertip, which hides what it drags.
    bool _isFinger = false;
    std::shared_ptr<ui::Loupe> _loupe;
    bool _isTakenBack = false;
};

}  // namespace kalim
