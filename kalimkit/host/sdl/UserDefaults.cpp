#include "kalimkit/host/sdl/UserDefaults.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "kalimkit/codec/Files.h"

namespace kalim {

namespace {

// More than any file of flags has.
constexpr std::uint64_t longestFile = 1 << 20;

}  // namespace

std::string UserDefaults::usualPath() {
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    // A relative one is invalid by the convention that names it.
    if (config && *config == '/') return std::string(config) + "/kalimkit/defaults";
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? std::string(home) + "/.config/kalimkit/defaults" : "";
}

UserDefaults::Lines UserDefaults::readLines() const {
    codec::Bytes bytes;
    if (_path.empty() || codec::readFile(_path, bytes, longestFile)) return {};
    Lines lines;
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos) continue;
        lines[std::string(line.substr(0, sign))] = line.substr(sign + 1);
    }
    return lines;
}

std::optional<bool> UserDefaults::value(const std::string& key) {
    if (!_lines) _lines = readLines();
    const auto line = _lines->find(key);
    if (line == _lines->end() || (line->second != "true" && line->second != "false")) {
        return std::nullopt;
    }
    return line->second == "true";
}

std::optional<std::string> UserDefaults::setValue(const std::string& key, bool value) {
    if (this->value(key) == value) return std::nullopt;
    // Another process may have written meanwhile.
    _lines = readLines();
    (*_lines)[key] = value ? "true" : "false";
    if (_path.empty()) return std::nullopt;
    std::string text;
    for (const auto& [name, content] : *_lines)
        text += name + "=" + content + "\n";
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), error);
    return codec::writeFileAtomically(_path, codec::Bytes(text.begin(), text.end()));
}

}  // namespace kalim
