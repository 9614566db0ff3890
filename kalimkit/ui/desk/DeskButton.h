#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/desk/DeskControl.h"

namespace kalim::ui {

// A button of a bar: an icon, a title right of it, or both. Selected, it shows that what it stands
// for is chosen. Lengths are points.
class KALIM_API DeskButton : public DeskControl {
public:
    // Of a button with an icon alone, and of any button's height.
    static constexpr double side = 36;
    enum class Style {
        Plain,
        // The one that does what the screen is for.
        Accent,
        // One that destroys something.
        Danger,
    };

    // An icon by the name of drawDeskIcon(), or none; as large as it needs.
    static std::shared_ptr<DeskButton> make(std::string icon, std::string title = {});

    // ---- looks
    const std::string& icon() const { return _icon; }
    void setIcon(std::string icon);
    // A host's picture instead of an icon, shown in its own colours.
    void setImage(gfx::ImageRef image);
    const std::string& title() const { return _title; }
    void setTitle(std::string title);
    void setStyle(Style style);
    // Whether it opens something: a small mark at the right says so.
    void setOpens(bool opens);
    bool opens() const { return _opens; }
    // A colour that it stands for, shown in place of an icon; one that is not opaque on squares.
    const std::optional<gfx::Color>& swatch() const { return _swatch; }
    void setSwatch(const std::optional<gfx::Color>& color);

    // ---- measures
    gfx::Size fittingSize() const;
    // The corner stays.
    void sizeToFit();

    // What a tap does, or the key; in place of what was given before.
    void setHandler(std::function<void()> handler);
    // Without a label and a tip, the title.
    std::string accessibilityLabel() const override;
    AccessibilityRole accessibilityRole() const override;

protected:
    DeskButton() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void drawPicture(gfx::Context& context, const gfx::Rect& rect, const gfx::Color& color) const;
    void drawStyle(gfx::Context& context, const Palette& palette) const;
    bool hasPicture() const { return !_icon.empty() || _image || _swatch; }

    std::string _icon;
    gfx::ImageRef _image;
    std::string _title;
    Style _style = Style::Plain;
    bool _opens = false;
    std::optional<gfx::Color> _swatch;
};

// A disc of a colour, on squares where one sees through it.
KALIM_API void drawSwatch(gfx::Context& context, const gfx::Rect& rect, const gfx::Color& color,
                          const gfx::Color& edge);
// The squares that stand for nothing, in a rectangle.
KALIM_API void drawSquares(gfx::Context& context, const gfx::Rect& rect);

}  // namespace kalim::ui
