#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// A button of the host's own in the bars of wide screens.
struct HostButton {
    enum class Place { Pens, Actions };
    // What scenarios call it, and what it is told by.
    std::string identifier;
    // Null for a button with its title alone.
    gfx::ImageRef icon;
    std::string title;
    Place place = Place::Actions;
    std::function<void()> action;
};

// What a host lets people choose from, in its order; where it says nothing, each shell has its own.
class KALIM_API EditorOffer {
public:
    // By their identifiers, see penIdentifier(). Answers with what is wrong with one; nothing
    // changes then. An empty list takes the host's choice back, as in the others.
    std::optional<std::string> setPens(const std::vector<std::string>& identifiers);
    // Nulls are passed over.
    void setColors(std::vector<gfx::ColorRef> colors);
    // Points from 1 to 100; others are passed over.
    void setWidths(const std::vector<double>& widths);

    // In the place of one of the same identifier.
    void addButton(HostButton button);
    void removeButton(std::string_view identifier);
    const std::vector<HostButton>& buttons() const { return _buttons; }

    // Numbers of pens; nothing where the host has not chosen.
    const std::optional<std::vector<unsigned>>& pens() const { return _pens; }
    bool hasColors() const { return !_colors.empty(); }
    bool hasWidths() const { return !_widths.empty(); }
    // The host's, or the editor's.
    std::vector<gfx::ColorRef> colors() const;
    std::vector<double> widths() const;

private:
    std::optional<std::vector<unsigned>> _pens;
    std::vector<gfx::ColorRef> _colors;
    std::vector<double> _widths;
    std::vector<HostButton> _buttons;
};

}  // namespace kalim
