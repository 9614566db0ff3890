#include "kalimkit/host/sdl/SdlKeyNames.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kalim {

namespace {

constexpr std::pair<SDL_Keycode, std::string_view> names[] = {
    {SDLK_LEFT, "left"},
    {SDLK_RIGHT, "right"},
    {SDLK_UP, "up"},
    {SDLK_DOWN, "down"},
    {SDLK_HOME, "home"},
    {SDLK_END, "end"},
    {SDLK_BACKSPACE, "backspace"},
    {SDLK_DELETE, "delete"},
    {SDLK_RETURN, "enter"},
    {SDLK_KP_ENTER, "enter"},
    {SDLK_TAB, "tab"},
    {SDLK_ESCAPE, "escape"},
    {SDLK_SPACE, "space"},
    {SDLK_LEFTBRACKET, "["},
    {SDLK_RIGHTBRACKET, "]"},
    {SDLK_PLUS, "plus"},
    {SDLK_KP_PLUS, "plus"},
    {SDLK_EQUALS, "="},
    {SDLK_MINUS, "-"},
    {SDLK_SLASH, "/"},
    {SDLK_QUESTION, "?"},
    {SDLK_F1, "f1"},
    {SDLK_F11, "f11"},
    {SDLK_KP_MINUS, "-"},
};

std::string nameOfSymbol(SDL_Keycode symbol) {
    const bool isLetter = symbol >= SDLK_a && symbol <= SDLK_z;
    const bool isDigit = symbol >= SDLK_0 && symbol <= SDLK_9;
    if (isLetter || isDigit) return std::string(1, static_cast<char>(symbol));
    const auto* const found =
        std::ranges::find(names, symbol, [](const auto& pair) { return pair.first; });
    return found == std::end(names) ? std::string() : std::string(found->second);
}

// The symbol of the place on a US keyboard; 0 for places without one of the names above.
SDL_Keycode usualSymbol(SDL_Scancode place) {
    if (place >= SDL_SCANCODE_A && place <= SDL_SCANCODE_Z)
        return SDLK_a + (place - SDL_SCANCODE_A);
    if (place >= SDL_SCANCODE_1 && place <= SDL_SCANCODE_9)
        return SDLK_1 + (place - SDL_SCANCODE_1);
    if (place == SDL_SCANCODE_0) return SDLK_0;
    if (place == SDL_SCANCODE_LEFTBRACKET) return SDLK_LEFTBRACKET;
    return place == SDL_SCANCODE_RIGHTBRACKET ? SDLK_RIGHTBRACKET : SDLK_UNKNOWN;
}

}  // namespace

std::string nameOfKey(const SDL_Keysym& key) {
    std::string name = nameOfSymbol(key.sym);
    if (name.empty()) name = nameOfSymbol(usualSymbol(key.scancode));
    if (name.empty()) return name;
    const char* const ctrl = (key.mod & (KMOD_CTRL | KMOD_GUI)) != 0 ? "ctrl+" : "";
    const char* const alt = (key.mod & KMOD_ALT) != 0 ? "alt+" : "";
    const char* const shift = (key.mod & KMOD_SHIFT) != 0 ? "shift+" : "";
    return ctrl + std::string(alt) + shift + name;
}

}  // namespace kalim
