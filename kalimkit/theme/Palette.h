#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/Appearance.h"

namespace kalim {

// The colours of what is shown around a picture on wide screens, all in one place. Texts and icons
// stand out from each ground that they are shown on by 4.5 to 1 at least, with high contrast by 7
// to 1; edges, tracks and the ring of what has the keys' focus by 3 to 1. The phone's bars have
// colours of their own.
struct Palette {
    // ---- grounds
    // Behind the picture, of bars, and of what lies above them, as menus.
    gfx::Color window;
    gfx::Color bar;
    gfx::Color raised;
    // Of a control in a bar or above it: under the pointer, pressed, and chosen.
    gfx::Color hovered;
    gfx::Color pressed;
    gfx::Color chosen;
    // Of the one button that does what the screen is for.
    gfx::Color accent;
    // Of what is told about the thing under the pointer, and of short notes.
    gfx::Color tip;

    // ---- what is shown on grounds
    // Texts and icons: on window, bar, raised, hovered and pressed.
    gfx::Color text;
    gfx::Color secondaryText;
    // On bar and raised, of what cannot be used now.
    gfx::Color disabledText;
    gfx::Color chosenText;
    gfx::Color accentText;
    gfx::Color tipText;
    // Of what destroys something; as text.
    gfx::Color danger;

    // ---- lines
    // Around what can be set, as fields and sliders, and around the control that has the focus.
    gfx::Color track;
    gfx::Color focus;
    // Between bars and what they lie on, and in menus; only where the contrast is high does it have
    // to be seen.
    gfx::Color separator;
    gfx::Color shadow;

    // That of the current environment's appearance, with the colours that its host has given.
    KALIM_API static Palette current();
    KALIM_API static Palette of(const ui::Appearance& appearance);
};

// A colour of the palette by its name, as a host's style sheet knows it: "bar", "chosen-text".
struct PaletteColor {
    std::string_view name;
    gfx::Color Palette::*color;
};
KALIM_API std::span<const PaletteColor> paletteColors();

// The host's own colour in the current environment, whatever its appearance; nothing gives back the
// palette's. False, and nothing happens, for a name that there is none of. Windows are to be drawn
// anew then.
KALIM_API bool setPaletteColor(std::string_view name, const std::optional<gfx::Color>& color);

// The ratio of two colours' luminances by WCAG 2.2, 1 to 21, as if both were opaque.
KALIM_API double contrastRatio(const gfx::Color& one, const gfx::Color& other);

}  // namespace kalim
