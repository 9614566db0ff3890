#include "kalimkit/editor/screen/EditorPickers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string_view>

#include "kalimkit/editor/picker/PickerNames.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr int colorPickerTag = 11;
constexpr int sizePickerTag = 22;
constexpr double foldDuration = 0.3;

// The first dot that matches; the first of all when none does.
template <typename Matches>
int indexOf(const EditorPickers::Dots& dots, Matches matches) {
    const auto found =
        std::ranges::find_if(dots, [&matches](const auto& dot) { return matches(*dot->config()); });
    if (found == dots.end()) return 0;
    return static_cast<int>(std::distance(dots.begin(), found));
}

// The phone has dots for the editor's sizes alone.
std::vector<unsigned> offeredSizes(const EditorOffer& offer) {
    if (!offer.hasWidths()) return editorSizes();
    std::vector<unsigned> sizes;
    for (const double width : offer.widths()) {
        const auto size = std::ranges::find(penSizes(), width, &PenSize::lineWidth);
        if (size != penSizes().end())
            sizes.push_back(static_cast<unsigned>(size - penSizes().begin()));
    }
    return sizes.empty() ? editorSizes() : sizes;
}

}  // namespace

// ---- making

void EditorPickers::makeDots() {
    if (!_colorDots.empty()) return;
    for (const gfx::ColorRef& color : _offer.colors())
        _colorDots.push_back(TesselDot::initWithColorShowBorder(color, false));
    for (const unsigned size : offeredSizes(_offer))
        _sizeDots.push_back(TesselDot::initWithSize(size));
    for (const unsigned pen : _offer.pens() ? *_offer.pens() : editorPens())
        _penDots.push_back(TesselDot::initWithPen(pen));
    for (const unsigned shape : editorShapes())
        _shapeDots.push_back(TesselDot::initWithShape(shape));
}

void EditorPickers::makeAnew(ui::View& panel, const std::weak_ptr<TesselPopDelegate>& delegate) {
    for (const auto& picker : {_colors, _sizes, _pens})
        picker->removeFromSuperview();
    _colorDots.clear();
    _sizeDots.clear();
    _penDots.clear();
    _shapeDots.clear();
    _offersHidingStyles = false;
    _padding = _offset = 0;
    makeDots();
    makeRows(panel, delegate);
}

void EditorPickers::makeRows(ui::View& panel, const std::weak_ptr<TesselPopDelegate>& delegate) {
    _colors = makeRow(panel, _colorDots, colorPickerTag, 0);
    _sizes = makeRow(panel, _sizeDots, sizePickerTag, 2);
    _pens = makeRow(panel, _penDots, 0, 0);
    for (const auto& picker : {_colors, _sizes, _pens})
        picker->setDelegate(delegate);
    _colors->setIsFold(true);
    _sizes->setIsFold(true);
}

std::shared_ptr<TesselPopView> EditorPickers::makeRow(ui::View& panel, const Dots& dots, int tag,
                                                      int selectIndex) const {
    const auto picker = TesselPopView::initWithArraysDirection(dots, 1);
    picker->setTag(tag);
    picker->setSelectIndex(selectIndex);
    picker->setTakesTouchesWhileFolding(_stage.isForgiving());
    panel.addSubview(picker);
    return picker;
}

// ---- folding

void EditorPickers::fold() {
    if (areMade()) setFolded(true, true, true);
}

void EditorPickers::toggle(const TesselPopView& picker) {
    if (picker.tag() != colorPickerTag && picker.tag() != sizePickerTag) return;
    if (!picker.isFold()) return fold();
    const bool isColor = picker.tag() == colorPickerTag;
    setFolded(!isColor, isColor, false);
}

void EditorPickers::setFolded(bool color, bool size, bool isInset) {
    _colors->setIsFold(color);
    _sizes->setIsFold(size);
    _isInset = isInset;
    ui::View::animate({.duration = foldDuration, .allowsUserInteraction = _stage.isForgiving()},
                      [this] { _stage.layout(); });
}

// ---- what is picked

void EditorPickers::show(const gfx::ColorRef& color, unsigned size, unsigned pen,
                         unsigned currentPen) {
    if (!areMade()) return;
    _colors->setSelectIndex(indexOf(_colorDots, [&color](const TesselConfig& config) {
        return gfx::equalColors(config.color(), color);
    }));
    showSize(size);
    showPen(pen, currentPen);
}

void EditorPickers::showPen(unsigned pen, unsigned currentPen) {
    if (!areMade()) return;
    const std::vector<unsigned>& pens = _offer.pens() ? *_offer.pens() : editorPens();
    const bool hasDot = std::ranges::find(pens, pen) != pens.end();
    const unsigned first = pen == currentPen && !hasDot ? pen : pens.front();
    if (_penDots.front()->config()->pen() != first) _penDots.front()->setPen(first);
    _pens->setSelectIndex(
        indexOf(_penDots, [pen](const TesselConfig& config) { return config.pen() == pen; }));
}

void EditorPickers::offerHidingStyles(std::uint64_t drawType) {
    if (!areMade()) return;
    const auto& styles = hidingStyles();
    for (std::size_t i = 0; i < std::min(styles.size(), _sizeDots.size()); ++i)
        _sizeDots[i]->setHidingStyle(styles[i].drawType);
    _offersHidingStyles = true;
    _sizes->setOffered(static_cast<int>(styles.size()));
    _sizes->setAccessibilityLabel(hidingName());
    _sizes->setSelectIndex(indexOf(_sizeDots, [drawType](const TesselConfig& config) {
        return config.hidingStyle() == drawType;
    }));
}

void EditorPickers::offerSizes(unsigned size) {
    if (!areMade() || !_offersHidingStyles) return;
    for (const auto& dot : _sizeDots)
        dot->setHidingStyle(std::nullopt);
    _offersHidingStyles = false;
    _sizes->setOffered(static_cast<int>(_sizeDots.size()));
    _sizes->setAccessibilityLabel(kindName(_sizeDots.front()->config()->type()));
    showSize(size);
}

void EditorPickers::showSize(unsigned size) {
    if (_offersHidingStyles) return;
    _sizes->setSelectIndex(
        indexOf(_sizeDots, [size](const TesselConfig& config) { return config.size() == size; }));
}

void EditorPickers::setPensEnabled(bool enabled) {
    if (areMade()) _pens->setEnable(enabled);
}

void EditorPickers::setTakesTouchesWhileFolding(bool takes) {
    if (!areMade()) return;
    for (const auto& picker : {_colors, _sizes, _pens})
        picker->setTakesTouchesWhileFolding(takes);
}

bool EditorPickers::hold(const ui::Touch& touch) const {
    return std::ranges::any_of(std::array{_colors, _sizes, _pens}, [&](const auto& picker) {
        return picker && picker->bounds().contains(touch.locationIn(picker.get()));
    });
}

// ---- layout

void EditorPickers::spreadOver(double width) {
    if (!areMade()) return;
    const PickerSpacing spacing = pickerSpacing(width, _penDots.size());
    if (spacing.padding == _padding && spacing.offset == _offset) return;
    _padding = spacing.padding;
    _offset = spacing.offset;
    for (const auto& picker : {_colors, _sizes, _pens})
        picker->setStaticPadding(_padding);
}

void EditorPickers::measure(EditorMeasures& measures) const {
    measures.pickerInset = _isInset ? _offset : 0;
    if (!areMade()) return;
    measures.penPickerWidth = _pens->intrinsicContentSize().width;
    measures.colorPickerWidth = _colors->intrinsicContentSize().width;
    measures.sizePickerWidth = _sizes->intrinsicContentSize().width;
}

}  // namespace kalim
