#pragma once

namespace kalim::ui {

// Keys that change what a drag does while they are held.
struct Modifiers {
    bool shift = false;
    bool alt = false;
    // The command key counts as control where the host has one.
    bool control = false;
    bool space = false;

    bool operator==(const Modifiers&) const = default;
};

}  // namespace kalim::ui
