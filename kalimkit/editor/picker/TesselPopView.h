#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselDotDelegate.h"
#include "kalimkit/editor/picker/TesselPopDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A row of dots, of which one is selected. It folds into that one: the dots then lie on top of each
// other. The row is always as large as its dots need; when that changes its top left corner stays,
// and the view above lays out anew.
class KALIM_API TesselPopView : public ui::View, public TesselDotDelegate {
public:
    // Seconds that folding and unfolding take.
    static constexpr double foldDuration = 0.3;

    // ---- making. Direction 1 puts the dots side by side, any other one below another. The dots
    // get their place as their tag; null ones are left out.
    static std::shared_ptr<TesselPopView> initWithArrays(
        std::vector<std::shared_ptr<TesselDot>> views);
    static std::shared_ptr<TesselPopView> initWithArraysDirection(
        std::vector<std::shared_ptr<TesselDot>> views, int direction);

    // ---- taps
    // Nothing happens without a delegate.
    void clickDotWithConfigIndex(const std::shared_ptr<TesselConfig>& config, int index) override;
    // Of a folded row only the selected dot is touched. While the row folds or unfolds, it keeps
    // what lands on it for itself, unless it takes touches then: not even what is behind it is
    // touched.
    std::shared_ptr<ui::View> hitTest(gfx::Point p) override;

    // ---- properties
    const std::vector<std::shared_ptr<TesselDot>>& views() const { return _views; }
    int direction() const { return _direction; }
    int selectIndex() const { return _selectIndex; }
    int currentSelectedIndex() const override { return _selectIndex; }
    // An index without a dot is ignored.
    void setSelectIndex(int index);
    bool isFold() const { return _isFold; }
    // Setting it animates.
    void setIsFold(bool fold);
    // Whether it takes touches while it folds or unfolds, where the dots are to be. Off at first.
    bool takesTouchesWhileFolding() const { return _takesTouchesWhileFolding; }
    void setTakesTouchesWhileFolding(bool takes) { _takesTouchesWhileFolding = takes; }
    // Whether it takes touches; it is faded while it does not.
    bool enable() const { return isUserInteractionEnabled(); }
    void setEnable(bool enable);
    // How many of the dots there are to choose from, the first ones; all of them at first. The
    // others are hidden and take no room.
    int offered() const { return _offered; }
    void setOffered(int count);
    // Points between the dots, negative where they lie on each other; 16 at first.
    double padding() const { return _padding; }
    // Means the same for the unfolded row.
    double staticPadding() const { return _staticPadding; }
    void setStaticPadding(double padding);
    // Whether it is folding or unfolding.
    bool isAnimating() const { return _isAnimating; }
    // What the dot in use is called: the selected one, or where that opens the crop editor, the one
    // before.
    std::string accessibilityValue() const override;
    bool isAccessibilityEnabled() const override { return enable(); }
    // What the dots take up.
    gfx::Size intrinsicContentSize() const;
    int tag() const { return _tag; }
    void setTag(int tag) { _tag = tag; }

    // ---- delegate
    void setDelegate(std::weak_ptr<TesselPopDelegate> delegate) { _delegate = std::move(delegate); }

protected:
    TesselPopView(std::vector<std::shared_ptr<TesselDot>> views, int direction);
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    void setPadding(double padding);
    // Of a dot that is not selected.
    void hideOthers(double alphaWhenFolded);
    void sayWhatIsInUse();

    std::vector<std::shared_ptr<TesselDot>> _views;
    int _direction;
    int _offered;
    int _selectIndex = 0;
    int _indexInUse = 0;
    bool _takesTouchesWhileFolding = false;
    bool _isFold = false;
    double _padding = 16;
    double _staticPadding = 16;
    bool _isAnimating = false;
    // Counts the foldings, so that only the end of the last one counts.
    std::uint64_t _folding = 0;
    int _tag = 0;
    std::weak_ptr<TesselPopDelegate> _delegate;
};

}  // namespace kalim
