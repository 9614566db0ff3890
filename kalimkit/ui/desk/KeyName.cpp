#include "kalimkit/ui/desk/KeyName.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

// Those that are not called as their name says.
constexpr std::pair<std::string_view, std::string_view> names[] = {
    {"escape", "Esc"},     {"plus", "+"},      {"left", "\u2190"}, {"right", "\u2192"},
    {"up", "\u2191"},      {"down", "\u2193"}, {"-", "\u2212"},    {"pagedown", "Page Down"},
    {"pageup", "Page Up"},
};

std::string partName(std::string_view part) {
    const Environment& environment = Environment::current();
    const auto* const named =
        std::ranges::find(names, part, [](const auto& pair) { return pair.first; });
    if (named != std::end(names)) return environment.localizedString(std::string(named->second));
    if (part == "space") return environment.localizedString("空格");
    std::string name(part);
    if (!name.empty()) {
        name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
    }
    // Keyboards of other languages say other words.
    return environment.localizedString(name);
}

}  // namespace

std::string keyName(std::string_view key) {
    std::string name;
    while (!key.empty()) {
        // The last part may be a plus itself.
        const std::size_t plus = key.find('+', 1);
        const std::string_view part = key.substr(0, plus);
        if (!name.empty()) name += '+';
        name += partName(part);
        key = plus == std::string_view::npos ? std::string_view() : key.substr(plus + 1);
    }
    return name;
}

}  // namespace kalim::ui
