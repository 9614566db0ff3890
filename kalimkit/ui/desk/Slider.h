#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/desk/DraggedControl.h"

namespace kalim::ui {

// A value on a line, set by a finger, a pointer or keys: the arrows by a step, with shift by ten,
// home and end to the ends. A finger near a stop takes that.
class KALIM_API Slider : public DraggedControl<double> {
public:
    static constexpr double height = 32;

    // Ends that are not numbers, or the wrong way round, count as 0 and 1.
    static std::shared_ptr<Slider> make(double least, double most);

    double least() const { return _least; }
    double most() const { return _most; }
    double value() const { return shown(); }
    // Brought between the ends; the handler does not hear of it. While a finger is on it, it stays
    // the finger's.
    void setValue(double value);
    // Of the keys; values are multiples of it. At first a hundredth of the range.
    void setStep(double step);
    // Where marks are shown, and where a finger likes to stay.
    void setStops(std::vector<double> stops);
    // How a value is told, such as "12 pt"; at first as a whole number.
    void setSpeaker(std::function<std::string(double value)> speaker);

    bool handleKey(std::string_view key, bool isRepeated) override;

    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }

protected:
    Slider() = default;
    double valueAt(gfx::Point p) const override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    gfx::Rect track() const;
    double placeOf(double value) const;
    double stepped(double value) const;

    double _least = 0;
    double _most = 1;
    double _step = 0.01;
    std::vector<double> _stops;
    std::function<std::string(double)> _speaker;
};

}  // namespace kalim::ui
