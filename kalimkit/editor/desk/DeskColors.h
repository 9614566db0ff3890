#pragma once

#include "kalimkit/gfx/Color.h"

namespace kalim {

// The colours of the desk's bars, as the user's system wants them.
struct DeskColors {
    // The bars, and the line between them and the canvas.
    gfx::Color bar;
    gfx::Color line;
    // Texts and pictures on the bars, and those that cannot be used or matter less.
    gfx::Color content;
    gfx::Color faint;
    // Under what the pointer is over, what is pressed, and what is in force.
    gfx::Color hovered;
    gfx::Color pressed;
    gfx::Color chosen;
    // Of what stands out.
    gfx::Color accent;
    gfx::Color accentPressed;
    gfx::Color onAccent;
    // Around the picture.
    gfx::Color desk;
};

// Of the current environment.
DeskColors deskColors();

}  // namespace kalim
