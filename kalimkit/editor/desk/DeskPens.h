#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/desk/DeskScrollMark.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/control/ScrollView.h"

namespace kalim {

// The desk's bar of pens, at the left: each a button, in one column or two, which scroll where even
// those have no room.
class DeskPens : public DeskBar, public ui::ScrollViewDelegate {
public:
    using Chosen = std::function<void(unsigned pen)>;
    static std::shared_ptr<DeskPens> make(const std::vector<unsigned>& pens,
                                          const std::vector<HostButton>& buttons, Chosen chosen);

    std::size_t count() const { return _buttons.size(); }
    void setColumns(std::size_t columns);
    // Which of them is in hand.
    void showPen(unsigned pen);

    void scrollViewDidScroll(ui::ScrollView& view) override;

protected:
    void layoutSubviews() override;
    std::vector<EditorShell::Named> views() const override;

private:
    struct Entry {
        // Nothing for a host's own button.
        std::optional<unsigned> pen;
        std::string name;
        std::shared_ptr<ui::DeskButton> button;
    };

    DeskPens() : DeskBar("pens", Edge::Right) {}
    void addPen(const Pen& pen, const Chosen& chosen);

    std::shared_ptr<ui::ScrollView> _scroll;
    std::vector<std::shared_ptr<DeskScrollMark>> _marks;
    std::vector<Entry> _buttons;
    std::size_t _columns = 1;
};

}  // namespace kalim
