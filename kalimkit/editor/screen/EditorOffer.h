#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

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
};

}  // namespace kalim
