#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/desk/DeskButton.h"

namespace kalim::ui {

// A few answers side by side, of which one is chosen at most.
class KALIM_API SegmentedControl : public View {
public:
    struct Segment {
        // By the name of drawDeskIcon(); a title besides it or instead.
        std::string icon;
        std::string title = {};
        std::string tip = {};
    };
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    using Handler = std::function<void(std::size_t index)>;

    // As large as its segments need.
    static std::shared_ptr<SegmentedControl> make(const std::vector<Segment>& segments);

    std::size_t chosen() const { return _chosen; }
    // Any number beyond the last chooses none; the handler does not hear of it.
    void setChosen(std::size_t index);
    void setEnabled(bool enabled);
    // What the user has chosen, also what is chosen already.
    void setHandler(Handler handler) { _handler = std::move(handler); }
    const std::vector<std::shared_ptr<DeskButton>>& buttons() const { return _buttons; }

protected:
    SegmentedControl() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void choose(std::size_t index);

    std::vector<std::shared_ptr<DeskButton>> _buttons;
    std::size_t _chosen = none;
    Handler _handler;
};

}  // namespace kalim::ui
