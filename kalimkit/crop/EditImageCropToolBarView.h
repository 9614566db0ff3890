#pragma once

#include <memory>
#include <string>
#include <utility>

#include "kalimkit/crop/EditImageCropToolBarDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The bar at the bottom of the crop editor: cancel, revert and confirm, and above it the rotate
// button. It decides nothing: every button reports to the delegate.
class KALIM_API EditImageCropToolBarView : public ui::View {
public:
    // A new bar is invisible.
    static std::shared_ptr<EditImageCropToolBarView> init();

    // Whether there is something to revert; not at first.
    void canRevertEnable(bool enable);
    void hideRotateBtnWithAnimation(bool hide, bool animated);

    // ---- parts
    const std::shared_ptr<ui::Button>& cancelBtn() const { return _cancelBtn; }
    const std::shared_ptr<ui::Button>& revertBtn() const { return _revertBtn; }
    const std::shared_ptr<ui::Button>& doneBtn() const { return _doneBtn; }
    // Over the bar, outside of its bounds. It takes touches only while it is shown fully.
    const std::shared_ptr<ui::Button>& rotateBtn() const { return _rotateBtn; }
    // Reaches from the bar's top to the bottom of the view that the bar is in.
    const std::shared_ptr<ui::View>& bottomBackgroundView() const { return _bottomBackgroundView; }

    // ---- properties
    bool revertBtnEnable() const { return _revertBtn->isEnabled(); }
    // Kept for the owner; the buttons look the same.
    bool bBtnUseWord() const { return _bBtnUseWord; }
    void setBBtnUseWord(bool useWord) { _bBtnUseWord = useWord; }

    // ---- delegate
    std::shared_ptr<EditImageCropToolBarDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<EditImageCropToolBarDelegate> delegate) {
        _delegate = std::move(delegate);
    }

    std::shared_ptr<ui::View> hitTest(gfx::Point p) override;

protected:
    EditImageCropToolBarView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    using Message = void (EditImageCropToolBarDelegate::*)();

    std::shared_ptr<ui::Button> makeButton(const std::string& label, Message message);
    std::shared_ptr<ui::Button> makeButton(const std::string& label, const std::string& image,
                                           Message message);

    std::weak_ptr<EditImageCropToolBarDelegate> _delegate;
    std::shared_ptr<ui::View> _bottomBackgroundView;
    std::shared_ptr<ui::View> _topRule;
    std::shared_ptr<ui::Button> _cancelBtn;
    std::shared_ptr<ui::Button> _revertBtn;
    std::shared_ptr<ui::Button> _doneBtn;
    std::shared_ptr<ui::Button> _rotateBtn;
    bool _bBtnUseWord = false;
};

}  // namespace kalim
