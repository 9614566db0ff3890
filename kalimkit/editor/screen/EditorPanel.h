#pragma once

#include <functional>
#include <memory>

#include "kalimkit/editor/screen/EditorLayout.h"
#include "kalimkit/editor/screen/EditorPickers.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/editor/screen/PenButton.h"
#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"

namespace kalim {

// The panel with the pickers, which slides up over the picture: it lies on a mask, and a check mark
// closes it that covers the pen button. Either way can be turned round before it has come to its
// end.
class EditorPanel {
public:
    enum class State { Closed, Opening, Open, Closing };

    EditorPanel(const EditorStage& stage, EditorPicture& picture, PenButton& pen,
                EditorPickers& pickers)
        : _stage(stage), _picture(picture), _pen(pen), _pickers(pickers) {}

    // ---- making
    void makeMask(std::weak_ptr<QNTMaskViewDelegate> delegate);
    // What a tap beside the pickers does, and one on the check mark. The delegate tells which taps
    // are beside them.
    void make(std::weak_ptr<ui::GestureDelegate> delegate, std::function<void()> tapped,
              std::function<void()> confirmed);
    // Told whenever it has closed.
    void setDidClose(std::function<void()> didClose) { _didClose = std::move(didClose); }

    // ---- the two ways
    void open();
    // Also deselects everything on the canvas. Nothing happens while it closes already; one that is
    // closed goes the whole way as well.
    void close();
    // It is gone at once, and what is selected stays so.
    void drop();

    // ---- readings
    State state() const { return _state; }
    bool isMoving() const { return _state == State::Opening || _state == State::Closing; }
    // Open, or about to be.
    bool isUp() const { return _state == State::Opening || _state == State::Open; }
    // What it was when it last came to rest.
    bool restedOpen() const { return _restedOpen; }
    // How far its bottom is below its place, points.
    double shift() const { return _shift; }
    // The pens cannot be picked while something is selected.
    void showWhetherPensApply();

    // ---- views; null until they are made
    const std::shared_ptr<QNTMaskView>& mask() const { return _mask; }
    const std::shared_ptr<ui::View>& view() const { return _view; }
    const std::shared_ptr<TesselConfirmButton>& confirmButton() const { return _confirmButton; }

private:
    void shrink();
    std::function<void(bool finished)> atEnd(void (EditorPanel::*ended)());
    void didOpen();
    void didClose();

    const EditorStage& _stage;
    EditorPicture& _picture;
    PenButton& _pen;
    EditorPickers& _pickers;
    std::function<void()> _didClose;
    std::shared_ptr<QNTMaskView> _mask;
    std::shared_ptr<ui::View> _view;
    std::shared_ptr<TesselConfirmButton> _confirmButton;
    State _state = State::Closed;
    bool _restedOpen = false;
    // Counts the ways, so that the end of one that was turned round is ignored.
    unsigned _way = 0;
    double _shift = 0;
};

}  // namespace kalim
