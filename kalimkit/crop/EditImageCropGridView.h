#pragma once

#include <array>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The crop frame as it is seen: a border, markers around the corners and lines at the thirds, all
// white with a dark shadow. It takes no touches.
class KALIM_API EditImageCropGridView : public ui::View {
public:
    static std::shared_ptr<EditImageCropGridView> initWithFrame(const gfx::Rect& frame);

    // The lines come as top, right, bottom, left.
    const std::array<std::shared_ptr<ui::View>, 4>& borderGridLines() const {
        return _borderGridLines;
    }
    // A corner has the upright arm first and then the level one; at the lower right it is the other
    // way round.
    using Corner = std::array<std::shared_ptr<ui::View>, 2>;
    const Corner& tlLineView() const { return _tlLineView; }
    const Corner& trLineView() const { return _trLineView; }
    const Corner& brLineView() const { return _brLineView; }
    const Corner& blLineView() const { return _blLineView; }
    const std::array<std::shared_ptr<ui::View>, 2>& horizontalGridLines() const {
        return _horizontalGridLines;
    }
    const std::array<std::shared_ptr<ui::View>, 2>& verticalGridLines() const {
        return _verticalGridLines;
    }

protected:
    EditImageCropGridView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override { layoutLines(); }

private:
    void setup();
    std::shared_ptr<ui::View> createLineView();
    void layoutLines();

    std::array<std::shared_ptr<ui::View>, 4> _borderGridLines;
    Corner _tlLineView;
    Corner _trLineView;
    Corner _brLineView;
    Corner _blLineView;
    std::array<std::shared_ptr<ui::View>, 2> _horizontalGridLines;
    std::array<std::shared_ptr<ui::View>, 2> _verticalGridLines;
};

}  // namespace kalim
