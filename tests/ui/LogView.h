#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/ui/view/View.h"

namespace kalim::test {

// Writes down its touches and may do something about each: "a moved 1 of 1 2" when finger 1 moved
// of those that are on the view.
class LogView : public ui::View {
public:
    using Lines = std::vector<std::string>;

    static std::shared_ptr<LogView> make(std::string name, const gfx::Rect& frame, Lines& lines);

    void touchesBegan(const ui::TouchEvent& event) override {
        note("began", event);
        if (passesOn) View::touchesBegan(event);
    }
    void touchesMoved(const ui::TouchEvent& event) override {
        note("moved", event);
        if (passesOn) View::touchesMoved(event);
    }
    void touchesEnded(const ui::TouchEvent& event) override {
        note("ended", event);
        if (passesOn) View::touchesEnded(event);
    }
    void touchesCancelled(const ui::TouchEvent& event) override {
        note("cancelled", event);
        if (passesOn) View::touchesCancelled(event);
    }

    // Whether the next responder gets its touches as well.
    bool passesOn = false;
    // Called after the line is written, before the touches are passed on.
    std::function<void(const std::string& phase, const ui::TouchEvent& event)> onTouch;

private:
    LogView(std::string name, Lines& lines) : _name(std::move(name)), _lines(lines) {}
    void note(const std::string& phase, const ui::TouchEvent& event);

    std::string _name;
    Lines& _lines;
};

}  // namespace kalim::test
