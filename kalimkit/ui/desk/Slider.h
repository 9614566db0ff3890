#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/desk/DeskControl.h"

namespace kalim::ui {

// A value on a line, set by a finger, a pointer or keys: the arrows by a step, with shift by ten,
// home and end to the ends. A finger near a stop takes that. A finger that is cancelled gives the
// value back that it has found.
class KALIM_API Slider : public DeskControl {
public:
    static constexpr double height = 32;
    // What is changed: while a finger is down, and then once more as the last, which a host takes
    // for one step to undo. A key's change is final at once.
    using Handler = std::function<void(double value, bool isFinal)>;

    // Ends that are not numbers, or the wrong way round, count as 0 and 1.
    static std::shared_ptr<Slider> make(double least, double most);

    double least() const { return _least; }
    double most() const { return _most; }
    double value() const { return _value; }
    // Brought between the ends; the handler does not hear of it. While a finger is on it, it stays
    // the finger's.
    void setValue(double value);
    // Of the keys; values are multiples of it. At first a hundredth of the range.
    void setStep(double step);
    // Where marks are shown, and where a finger likes to stay.
    void setStops(std::vector<double> stops);
    // How a value is told, such as "12 pt"; at first as a whole number.
    void setSpeaker(std::function<std::string(double value)> speaker);
    void setHandler(Handler handler) { _handler = std::move(handler); }

    bool handleKey(std::string_view key, bool isRepeated) override;
    void touchesBegan(const TouchEvent& event) override;
    void touchesMoved(const TouchEvent& event) override;
    void touchesEnded(const TouchEvent& event) override;
    void touchesCancelled(const TouchEvent& event) override;
    bool admitsGesture(const GestureRecognizer& recognizer) const override {
        return admitsGestureButPan(recognizer);
    }
    void activate() override {}

    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }

protected:
    Slider() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    gfx::Rect track() const;
    double placeOf(double value) const;
    double valueAt(double x) const;
    double stepped(double value) const;
    void change(double value, bool isFinal);
    void follow(const TouchEvent& event);

    double _least = 0;
    double _most = 1;
    double _value = 0;
    double _step = 0.01;
    std::vector<double> _stops;
    std::function<std::string(double)> _speaker;
    Handler _handler;
    // What a finger that is on it has found.
    std::optional<double> _before;
};

}  // namespace kalim::ui
