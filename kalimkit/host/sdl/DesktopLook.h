#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/Appearance.h"

struct SDL_Window;

namespace kalim {

// What the user has chosen for all of his desktop.

// Whether it is dark or of high contrast, by the first of these that says so: GTK_THEME, the
// desktop's portal where there is one, GTK's settings, KDE's colours.
KALIM_API ui::Appearance desktopAppearance();
// The same without the portal, of variables and files as given: null and nothing for those that are
// not there.
using VariableReader = std::function<const char*(const char* name)>;
using FileReader = std::function<std::optional<std::string>(const std::string& path)>;
ui::Appearance appearanceBy(const VariableReader& variable, const FileReader& file);

// Pixels per point: GDK_SCALE and the resolution that X's resources name, Xft.dpi; in quarters, 1
// at least. Where the system enlarges windows by itself, as Wayland does, it is 1.
KALIM_API double desktopScale(::SDL_Window* window);
// The same of the variable's text and of the resources as X keeps them, either null for none.
double scaleBy(const char* gdkScale, const char* resources);

}  // namespace kalim
