#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/screen/EditorLayout.h"
#include "kalimkit/editor/screen/EditorOffer.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

// The rows of dots in the panel, from which pens, colours and sizes are picked. Those of colours
// and sizes share a row: at most one of them is unfolded at a time, and the pair then lies further
// apart. They are made at the first appearance, the dots first.
class EditorPickers {
public:
    using Dots = std::vector<std::shared_ptr<TesselDot>>;

    EditorPickers(const EditorStage& stage, const EditorOffer& offer)
        : _stage(stage), _offer(offer) {}

    // ---- making
    void makeDots();
    void makeRows(ui::View& panel, const std::weak_ptr<TesselPopDelegate>& delegate);
    bool areMade() const { return _pens != nullptr; }
    // Both once more, as what is offered has changed.
    void makeAnew(ui::View& panel, const std::weak_ptr<TesselPopDelegate>& delegate);

    // ---- folding, animated
    void fold();
    // After a tap on a row: a folded one unfolds in the place of the other.
    void toggle(const TesselPopView& picker);

    // ---- what is picked; nothing happens before they are made
    void show(const gfx::ColorRef& color, unsigned size, unsigned pen, unsigned currentPen);
    // The first dot stands in for a pen in use that has none of its own.
    void showPen(unsigned pen, unsigned currentPen);
    // The dots of sizes stand for ways to hide, or for sizes again, and show which one is in use.
    void offerHidingStyles(std::uint64_t drawType);
    void offerSizes(unsigned size);
    bool offersHidingStyles() const { return _offersHidingStyles; }
    void setPensEnabled(bool enabled);
    void setTakesTouchesWhileFolding(bool takes);
    // Whether a touch is theirs; a row that is disabled takes none, but the place is its own.
    bool hold(const ui::Touch& touch) const;

    // ---- layout
    // The dots spread over that width of the view.
    void spreadOver(double width);
    double padding() const { return _padding; }
    double offset() const { return _offset; }
    void measure(EditorMeasures& measures) const;

    // ---- rows and dots
    const std::shared_ptr<TesselPopView>& colorPicker() const { return _colors; }
    const std::shared_ptr<TesselPopView>& sizePicker() const { return _sizes; }
    const std::shared_ptr<TesselPopView>& penPicker() const { return _pens; }
    const Dots& colorDots() const { return _colorDots; }
    const Dots& sizeDots() const { return _sizeDots; }
    const Dots& penDots() const { return _penDots; }
    const Dots& shapeDots() const { return _shapeDots; }

private:
    std::shared_ptr<TesselPopView> makeRow(ui::View& panel, const Dots& dots, int tag,
                                           int selectIndex) const;
    void showSize(unsigned size);
    void setFolded(bool color, bool size, bool isInset);

    const EditorStage& _stage;
    const EditorOffer& _offer;
    std::shared_ptr<TesselPopView> _colors;
    std::shared_ptr<TesselPopView> _sizes;
    std::shared_ptr<TesselPopView> _pens;
    Dots _colorDots;
    Dots _sizeDots;
    Dots _penDots;
    Dots _shapeDots;
    bool _offersHidingStyles = false;
    // The rows of colours and sizes are moved inwards.
    bool _isInset = true;
    double _padding = 0;
    double _offset = 0;
};

}  // namespace kalim
