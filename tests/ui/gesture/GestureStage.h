#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::test {

// A window whose recognisers write down what they report: "tap ended", or with a measure "pan
// changed 10 0".
struct GestureStage : TestHost {
    using Lines = std::vector<std::string>;

    GestureStage() : TestHost({.device = std::make_shared<RecordingDevice>()}) {}

    // On the root view unless one is named.
    template <typename Recognizer>
    std::shared_ptr<Recognizer> add(const std::string& name,
                                    std::function<std::string(Recognizer&)> measure = {},
                                    ui::View* view = nullptr) {
        auto gesture = std::make_shared<Recognizer>();
        gesture->setHandler([this, name, measure](ui::GestureRecognizer& sender) {
            constexpr const char* states[] = {"possible", "began",     "changed",
                                              "ended",    "cancelled", "failed"};
            lines.push_back((name.empty() ? "" : name + " ") +
                            states[static_cast<int>(sender.state())]);
            if (measure) lines.back() += " " + measure(static_cast<Recognizer&>(sender));
        });
        (view ? view : window().rootView().get())->addGestureRecognizer(gesture);
        return gesture;
    }
    static std::string rounded(double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.0f", value);
        return text;
    }
    static std::string rounded(gfx::Point p) { return rounded(p.x) + " " + rounded(p.y); }
    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
};

}  // namespace kalim::test
