#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::test {

using Lines = std::vector<std::string>;

// A window on a device that records, three fingers on it, and what its views and recognisers have
// written down. A test is in it (TEST_F) or makes one for each of its cases.
struct Stage : TestHost {
    explicit Stage(gfx::Size size = {390, 844}, double scale = 1)
        : TestHost({.scale = scale, .size = size, .device = std::make_shared<RecordingDevice>()}) {}

    // In the root view, red unless told.
    std::shared_ptr<ui::View> addView(const gfx::Rect& frame,
                                      const gfx::ColorRef& color = gfx::makeColor(1, 0, 0)) {
        auto view = ui::View::initWithFrame(frame);
        view->setBackgroundColor(color);
        root->addSubview(view);
        return view;
    }
    // On the root view unless one is named. It writes what it reports: "tap ended", or with a
    // measure "pan changed 10 0".
    template <typename Recognizer>
    std::shared_ptr<Recognizer> add(const std::string& name,
                                    std::function<std::string(Recognizer&)> measure = {},
                                    ui::View* view = nullptr) {
        auto gesture = std::make_shared<Recognizer>();
        gesture->setHandler([this, name, measure](ui::GestureRecognizer& sender) {
            constexpr const char* states[] = {"possible", "began",     "changed",
                                              "ended",    "cancelled", "failed"};
            lines.push_back(name + " " + states[static_cast<int>(sender.state())]);
            if (measure) lines.back() += " " + measure(static_cast<Recognizer&>(sender));
        });
        (view ? *view : *root).addGestureRecognizer(gesture);
        return gesture;
    }
    static std::string rounded(double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.0f", value);
        return text;
    }
    static std::string rounded(gfx::Point p) { return rounded(p.x) + " " + rounded(p.y); }
    // What the window's surface was told since the last time.
    Lines takeDrawing() { return RecordingDevice::recording(*window().surface()).takeLines(); }
    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
    std::shared_ptr<ui::View> root = window().rootView();
    Finger one{window(), 1};
    Finger two{window(), 2};
    Finger three{window(), 3};
};

// Writes down its touches and may do something about each: "a moved 1 of 1 2" when finger 1 moved
// of those that are on the view.
class LogView : public ui::View {
public:
    static std::shared_ptr<LogView> make(std::string name, const gfx::Rect& frame, Lines& lines) {
        const std::shared_ptr<LogView> view(new LogView(std::move(name), lines));
        view->init(frame);
        return view;
    }
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

    static std::string idsOf(const std::vector<ui::TouchRef>& touches) {
        std::string ids;
        for (const ui::TouchRef& touch : touches)
            ids += " " + std::to_string(touch->id());
        return ids;
    }
    void note(const std::string& phase, const ui::TouchEvent& event) {
        _lines.push_back(_name + " " + phase + idsOf(event.touches) + " of" +
                         idsOf(event.allTouches));
        // A copy: it may replace itself.
        if (const auto react = onTouch) react(phase, event);
    }

    std::string _name;
    Lines& _lines;
};

}  // namespace kalim::test
