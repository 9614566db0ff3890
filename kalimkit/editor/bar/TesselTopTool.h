#pragma once

#include <memory>
#include <string>
#include <utility>

#include "kalimkit/editor/bar/TesselButton.h"
#include "kalimkit/editor/bar/TesselTopToolDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The translucent bar across the top of the editor: close, undo and redo, send; while a text is
// typed, only done. It decides nothing: every button reports to the delegate, which may let go of
// the bar meanwhile.
class KALIM_API TesselTopTool : public ui::View {
public:
    static std::shared_ptr<TesselTopTool> init();

    void setUndoEnableRedoEnable(bool undo, bool redo);
    // True shows the done button, and none of the others.
    void setEditMode(bool isEditing);

    // What lies free between redo and the button at the right, as high as touches need; of the
    // bar's own places.
    gfx::Rect freeRoom() const;

    // ---- what the buttons do
    void handleClose();
    void handleConfirm();
    void handleMore();
    void handleUndo();
    void handleRedo();
    void handleDone();

    // ---- parts
    const std::shared_ptr<ui::Button>& closeButton() const { return _closeButton; }
    const std::shared_ptr<TesselButton>& confirmButton() const { return _confirmButton; }
    const std::shared_ptr<ui::Button>& doneButton() const { return _doneButton; }
    // It is never shown.
    const std::shared_ptr<ui::Button>& moreButton() const { return _moreButton; }
    const std::shared_ptr<ui::Button>& undoButton() const { return _undoButton; }
    const std::shared_ptr<ui::Button>& redoButton() const { return _redoButton; }
    // Holds undo and redo.
    const std::shared_ptr<ui::View>& wrapView() const { return _wrapView; }

    // ---- delegate
    std::shared_ptr<TesselTopToolDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<TesselTopToolDelegate> delegate) {
        _delegate = std::move(delegate);
    }

protected:
    TesselTopTool() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    using Handler = void (TesselTopTool::*)();
    using Message = void (TesselTopToolDelegate::*)();

    void initSubviews();
    void prepareTitled(ui::Button& button, const std::string& title, Handler handler);
    void preparePictured(ui::Button& button, const std::string& label, const std::string& image,
                         Handler handler);
    void send(Message message);

    std::shared_ptr<ui::Button> _closeButton;
    std::shared_ptr<TesselButton> _confirmButton;
    std::shared_ptr<ui::Button> _doneButton;
    std::shared_ptr<ui::Button> _moreButton;
    std::shared_ptr<ui::Button> _undoButton;
    std::shared_ptr<ui::Button> _redoButton;
    std::shared_ptr<ui::View> _wrapView;
    std::weak_ptr<TesselTopToolDelegate> _delegate;
};

}  // namespace kalim
