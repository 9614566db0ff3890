#include "kalimkit/ui/control/KeyStroke.h"

#include <cstddef>

namespace kalim::ui {

namespace {

struct NamedKey {
    std::string_view name;
    KeyStroke::Key key;
};

constexpr NamedKey keys[] = {
    {"left", KeyStroke::Key::Left},     {"right", KeyStroke::Key::Right},
    {"up", KeyStroke::Key::Up},         {"down", KeyStroke::Key::Down},
    {"home", KeyStroke::Key::Home},     {"end", KeyStroke::Key::End},
    {"delete", KeyStroke::Key::Delete}, {"backspace", KeyStroke::Key::Backspace},
    {"enter", KeyStroke::Key::Enter},   {"tab", KeyStroke::Key::Tab},
};

bool readModifier(std::string_view name, KeyStroke& stroke) {
    bool* const held = name == "shift"  ? &stroke.shift
                       : name == "ctrl" ? &stroke.ctrl
                       : name == "alt"  ? &stroke.alt
                                        : nullptr;
    if (!held || *held) return false;
    *held = true;
    return true;
}

bool readKey(std::string_view name, KeyStroke& stroke) {
    for (const NamedKey& named : keys) {
        if (named.name != name) continue;
        stroke.key = named.key;
        return true;
    }
    if (name.size() != 1 || name[0] < 'a' || name[0] > 'z') return false;
    stroke.key = KeyStroke::Key::Letter;
    stroke.letter = name[0];
    return true;
}

}  // namespace

std::optional<KeyStroke> KeyStroke::parse(std::string_view text) {
    KeyStroke stroke;
    for (std::size_t plus = text.find('+'); plus != std::string_view::npos; plus = text.find('+')) {
        if (!readModifier(text.substr(0, plus), stroke)) return std::nullopt;
        text.remove_prefix(plus + 1);
    }
    if (!readKey(text, stroke)) return std::nullopt;
    return stroke;
}

}  // namespace kalim::ui
