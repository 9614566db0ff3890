#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/desk/ColorMath.h"
#include "kalimkit/ui/desk/DeskControl.h"

namespace kalim::ui {

// What of a colour a field changes: saturation to the right and value upwards, or one of the others
// to the right.
enum class ColorPart { SaturationAndValue, Hue, Alpha };

// A field that a finger, a pointer or the arrow keys pick a part of a colour in. It tells the whole
// colour, the rest of it as it was set.
class KALIM_API ColorField : public DeskControl {
public:
    // The last of a finger's changes is final, and so is each of the keys'. One that is cancelled
    // gives the colour back that it has found.
    using Handler = std::function<void(const HueColor& color, bool isFinal)>;

    static std::shared_ptr<ColorField> make(ColorPart part);

    const HueColor& color() const { return _color; }
    void setColor(const HueColor& color);
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
    std::optional<Cursor> cursorAt(gfx::Point /*p*/) override { return Cursor::Cross; }

    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }

protected:
    explicit ColorField(ColorPart part) : _part(part) {}
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    // Each from 0, left and bottom, to 1; a strip has no second.
    gfx::Point shares() const;
    HueColor colorWith(gfx::Point shares) const;
    gfx::Rect room() const;
    void change(const HueColor& color, bool isFinal);
    void follow(const TouchEvent& event);
    gfx::ImageRef ground() const;

    ColorPart _part;
    HueColor _color;
    Handler _handler;
    // What a finger that is on it has found.
    std::optional<HueColor> _before;
    // What is seen behind the knob, and the colour that it was made for.
    mutable gfx::ImageRef _ground;
    mutable gfx::Color _groundColor;
};

}  // namespace kalim::ui
