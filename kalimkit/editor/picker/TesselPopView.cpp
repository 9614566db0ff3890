#include "kalimkit/editor/picker/TesselPopView.h"

#include <algorithm>

#include "kalimkit/editor/picker/PickerNames.h"
#include "kalimkit/theme/Pens.h"

namespace kalim {

namespace {

constexpr double disabledAlpha = 0.3;
constexpr unsigned penType = 2;

}  // namespace

// ---- making

std::shared_ptr<TesselPopView> TesselPopView::initWithArrays(
    std::vector<std::shared_ptr<TesselDot>> views) {
    return initWithArraysDirection(std::move(views), 0);
}

std::shared_ptr<TesselPopView> TesselPopView::initWithArraysDirection(
    std::vector<std::shared_ptr<TesselDot>> views, int direction) {
    std::erase(views, nullptr);
    const std::shared_ptr<TesselPopView> row(new TesselPopView(std::move(views), direction));
    row->init({{}, row->intrinsicContentSize()});
    return row;
}

TesselPopView::TesselPopView(std::vector<std::shared_ptr<TesselDot>> views, int direction)
    : _views(std::move(views)), _direction(direction), _offered(static_cast<int>(_views.size())) {}

void TesselPopView::init(const gfx::Rect& frame) {
    View::init(frame);
    const auto self = std::static_pointer_cast<TesselPopView>(shared_from_this());
    int tag = 0;
    for (const auto& dot : _views) {
        dot->setDelegate(self);
        dot->setTag(tag++);
        addSubview(dot);
    }
    setAccessibilityRole(ui::AccessibilityRole::Group);
    if (!_views.empty()) setAccessibilityLabel(kindName(_views.front()->config()->type()));
}

// ---- taps

void TesselPopView::clickDotWithConfigIndex(const std::shared_ptr<TesselConfig>& config,
                                            int index) {
    const auto alive = shared_from_this();
    const auto delegate = _delegate.lock();
    if (!delegate) return;
    setSelectIndex(index);
    if (!_isFold) delegate->clickDotWithConfig(config);
    delegate->clickAtPop(*this);
}

std::shared_ptr<ui::View> TesselPopView::hitTest(gfx::Point p) {
    constexpr double leastAlpha = 0.01;
    if (isHidden() || alpha() < leastAlpha || !enable() || !pointInside(p)) return nullptr;
    const auto self = shared_from_this();
    const auto hit = View::hitTest(p);
    if (!hit || hit == self) return self;
    return _isFold ? _views.at(static_cast<std::size_t>(_selectIndex)) : hit;
}

// ---- selection

void TesselPopView::setSelectIndex(int index) {
    if (index < 0 || index >= _offered) return;
    _selectIndex = index;
    const auto& selected = _views.at(static_cast<std::size_t>(index));
    for (const auto& dot : _views) {
        if (dot != selected) dot->setSelect(false);
    }
    hideOthers(0);
    selected->setSelect(true);
    selected->setHidden(false);
    selected->setAlpha(1);
    bringSubviewToFront(*selected);
    sayWhatIsInUse();
}

// Nobody draws with the one that opens the crop editor.
void TesselPopView::sayWhatIsInUse() {
    const TesselConfig& selected = *_views.at(static_cast<std::size_t>(_selectIndex))->config();
    if (selected.type() != penType || selected.pen() != EditorPenCrop) _indexInUse = _selectIndex;
    int index = 0;
    for (const auto& dot : _views)
        dot->setSaidSelected(index++ == _indexInUse);
}

void TesselPopView::hideOthers(double alphaWhenFolded) {
    int index = 0;
    for (const auto& dot : _views) {
        const bool isOther = index++ != _selectIndex;
        dot->setAlpha(isOther && _isFold ? alphaWhenFolded : 1);
        dot->setAccessibilityHidden(isOther && _isFold);
    }
}

// ---- folding

void TesselPopView::setIsFold(bool fold) {
    _isFold = fold;
    _isAnimating = true;
    const std::uint64_t folding = ++_folding;
    View::animate(
        {.duration = foldDuration, .allowsUserInteraction = _takesTouchesWhileFolding},
        [this] {
            setPadding(_isFold ? -TesselDot::side : _staticPadding);
            layoutIfNeeded();
            hideOthers(0.01);
        },
        [weak = weak_from_this(), folding](bool /*finished*/) {
            const auto row = std::static_pointer_cast<TesselPopView>(weak.lock());
            if (row && row->_folding == folding) row->_isAnimating = false;
        });
}

void TesselPopView::setStaticPadding(double padding) {
    _staticPadding = padding;
    if (!_isFold) setPadding(padding);
}

void TesselPopView::setOffered(int count) {
    _offered = std::clamp(count, 1, std::max(static_cast<int>(_views.size()), 1));
    int index = 0;
    for (const auto& dot : _views)
        dot->setHidden(index++ >= _offered);
    if (_selectIndex >= _offered) setSelectIndex(0);
    setPadding(_padding);
}

void TesselPopView::setPadding(double padding) {
    _padding = padding;
    setFrame({frame().origin, intrinsicContentSize()});
    setNeedsLayout();
    if (superview()) superview()->setNeedsLayout();
}

// ---- layout

gfx::Size TesselPopView::intrinsicContentSize() const {
    const auto count = static_cast<double>(_offered);
    const double length = std::max(count * TesselDot::side + (count - 1) * _padding, 0.0);
    return _direction == 1 ? gfx::Size{length, TesselDot::side}
                           : gfx::Size{TesselDot::side, length};
}

void TesselPopView::layoutSubviews() {
    const double step = TesselDot::side + _padding;
    gfx::Point corner = bounds().origin;
    for (const auto& dot : _views) {
        dot->setFrame({corner, {TesselDot::side, TesselDot::side}});
        corner += _direction == 1 ? gfx::Point{step, 0} : gfx::Point{0, step};
    }
}

// ---- state

std::string TesselPopView::accessibilityValue() const {
    if (_views.empty()) return {};
    return _views.at(static_cast<std::size_t>(_indexInUse))->accessibilityLabel();
}

void TesselPopView::setEnable(bool enable) {
    setUserInteractionEnabled(enable);
    setAlpha(enable ? 1 : disabledAlpha);
}

}  // namespace kalim
