#include "kalimkit/host/sdl/DesktopLook.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <dlfcn.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "kalimkit/codec/Files.h"
#include "kalimkit/host/sdl/DesktopPortal.h"

namespace kalim {

namespace {

std::string lowered(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char letter) {
        return static_cast<char>(std::tolower(letter));
    });
    return lower;
}

// What stands behind "key=" in a section of a file of settings; nothing where it is not there.
std::optional<std::string> settingIn(const std::string& text, std::string_view section,
                                     std::string_view key) {
    bool isInSection = false;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.starts_with('[')) isInSection = line == "[" + std::string(section) + "]";
        const std::size_t equals = line.find('=');
        if (!isInSection || equals == std::string_view::npos) continue;
        const auto trimmed = [](std::string_view word) {
            while (!word.empty() && word.front() == ' ')
                word.remove_prefix(1);
            while (!word.empty() && (word.back() == ' ' || word.back() == '\r'))
                word.remove_suffix(1);
            return word;
        };
        if (trimmed(line.substr(0, equals)) == key)
            return std::string(trimmed(line.substr(equals + 1)));
    }
    return std::nullopt;
}

// By how themes are called, as "Adwaita-dark", "Adwaita:dark" and "HighContrastInverse".
std::optional<ui::Appearance> appearanceOfTheme(const std::string& name) {
    const std::string theme = lowered(name);
    const auto says = [&theme](const char* word) { return theme.find(word) != std::string::npos; };
    ui::Appearance appearance;
    appearance.hasHighContrast = says("highcontrast") || says("high-contrast");
    appearance.isDark = says("dark") || says("inverse");
    if (theme.empty()) return std::nullopt;
    return appearance;
}

std::optional<ui::Appearance> appearanceByGtk(const std::string& text) {
    const auto theme = settingIn(text, "Settings", "gtk-theme-name");
    const auto dark = settingIn(text, "Settings", "gtk-application-prefer-dark-theme");
    if (!theme && !dark) return std::nullopt;
    ui::Appearance appearance = appearanceOfTheme(theme.value_or("")).value_or(ui::Appearance());
    appearance.isDark = appearance.isDark || dark == "1" || dark == "true";
    return appearance;
}

// Of the window's ground, "27,30,32".
std::optional<ui::Appearance> appearanceByKde(const std::string& text) {
    const auto ground = settingIn(text, "Colors:Window", "BackgroundNormal");
    if (!ground) return appearanceOfTheme(settingIn(text, "General", "ColorScheme").value_or(""));
    constexpr int middle = 3 * 128;
    int sum = 0;
    std::string_view rest = *ground;
    while (!rest.empty()) {
        const std::string number(rest.substr(0, rest.find(',')));
        rest.remove_prefix(std::min(number.size() + 1, rest.size()));
        sum += std::clamp(std::atoi(number.c_str()), 0, 255);
    }
    return ui::Appearance{.isDark = sum < middle};
}

std::optional<std::string> readText(const std::string& path) {
    constexpr std::uint64_t longest = 1 << 20;
    codec::Bytes bytes;
    if (codec::readFile(path, bytes, longest)) return std::nullopt;
    return std::string(bytes.begin(), bytes.end());
}

std::string configFolder(const VariableReader& variable) {
    const char* const config = variable("XDG_CONFIG_HOME");
    if (config && *config == '/') return config;
    const char* const home = variable("HOME");
    return home && *home == '/' ? std::string(home) + "/.config" : "";
}

// The library is there already, as SDL uses it.
const char* resourcesOf(::SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version)
    if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11)
        return nullptr;
    void* const library = ::dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (!library) return nullptr;
    using Read = char* (*)(Display*);
    const auto read = reinterpret_cast<Read>(::dlsym(library, "XResourceManagerString"));
    const char* const text = read ? read(info.info.x11.display) : nullptr;
    ::dlclose(library);
    return text;
}

}  // namespace

ui::Appearance appearanceBy(const VariableReader& variable, const FileReader& file) {
    if (const char* const theme = variable("GTK_THEME"); theme && *theme)
        return appearanceOfTheme(theme).value_or(ui::Appearance());
    const std::string folder = configFolder(variable);
    for (const char* const name : {"/gtk-4.0/settings.ini", "/gtk-3.0/settings.ini"}) {
        const auto text = file(folder + name);
        const auto found = text ? appearanceByGtk(*text) : std::nullopt;
        if (found) return *found;
    }
    const auto text = file(folder + "/kdeglobals");
    const auto found = text ? appearanceByKde(*text) : std::nullopt;
    return found.value_or(ui::Appearance());
}

ui::Appearance desktopAppearance() {
    const char* const theme = std::getenv("GTK_THEME");
    const auto told = theme && *theme ? std::nullopt : portalAppearance();
    return told.value_or(
        appearanceBy([](const char* name) { return std::getenv(name); }, readText));
}

double scaleBy(const char* gdkScale, const char* resources) {
    constexpr double usualResolution = 96;
    constexpr double largest = 8;
    constexpr const char* key = "Xft.dpi:";
    double scale = 1;
    const char* const found = resources ? std::strstr(resources, key) : nullptr;
    if (found) scale = std::atof(found + std::strlen(key)) / usualResolution;
    // GTK's own scale is in its resolution already where both are set.
    if (gdkScale) scale = std::max(scale, std::atof(gdkScale));
    const double quarters = std::round(scale * 4) / 4;
    return std::isfinite(quarters) ? std::clamp(quarters, 1.0, largest) : 1;
}

double desktopScale(::SDL_Window* window) {
    const char* const driver = SDL_GetCurrentVideoDriver();
    if (driver && std::string_view(driver) == "wayland") return 1;
    return scaleBy(std::getenv("GDK_SCALE"), resourcesOf(window));
}

}  // namespace kalim
