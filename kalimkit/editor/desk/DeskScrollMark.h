#pragma once

#include <memory>

#include "kalimkit/ui/control/Control.h"
#include "kalimkit/ui/control/ScrollView.h"

namespace kalim {

// Says at one end of a bar that there is more beyond it, by a fade and an arrow, and shows that
// when it is pressed.
class DeskScrollMark : public ui::Control {
public:
    enum class Way { Sideways, Down };

    // Along the bar, points.
    static constexpr double length = 34;

    // The bar's view that scrolls that way owns neither.
    static std::shared_ptr<DeskScrollMark> make(const std::shared_ptr<ui::ScrollView>& scroll,
                                                Way way, bool isAtEnd);

    // Shown at its end of the view where there is more, else hidden.
    void follow();

protected:
    DeskScrollMark(Way way, bool isAtEnd) : _way(way), _isAtEnd(isAtEnd) {}
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void scroll() const;

    ui::ScrollRange range(const ui::ScrollView& scroll) const;

    std::weak_ptr<ui::ScrollView> _scroll;
    Way _way;
    bool _isAtEnd;
};

}  // namespace kalim
