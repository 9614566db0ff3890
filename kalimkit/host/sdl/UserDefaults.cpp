#include "kalimkit/host/sdl/UserDefaults.h"

#include <algorithm>
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

std::optional<std::string> UserDefaults::readLines() {
    _isRead = true;
    std::error_code error;
    if (_path.empty() || !std::filesystem::exists(_path, error)) return std::nullopt;
    codec::Bytes bytes;
    _lines.clear();
    if (auto problem = codec::readFile(_path, bytes, longestFile)) return problem;
    const std::string text(bytes.begin(), bytes.end());
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        _lines.emplace_back(line);
    }
    return std::nullopt;
}

std::string* UserDefaults::lineOf(const std::string& key) {
    const auto found = std::find_if(_lines.begin(), _lines.end(), [&](const std::string& line) {
        return line.starts_with(key + "=");
    });
    return found == _lines.end() ? nullptr : &*found;
}

std::optional<bool> UserDefaults::value(const std::string& key) {
    if (!_isRead) readLines();
    const std::string* const line = lineOf(key);
    if (!line || (*line != key + "=true" && *line != key + "=false")) return std::nullopt;
    return line->ends_with("=true");
}

std::optional<std::string> UserDefaults::setValue(const std::string& key, bool value) {
    if (this->value(key) == value) return std::nullopt;
    // Another process may have written meanwhile.
    const auto problem = readLines();
    const std::string line = key + (value ? "=true" : "=false");
    if (std::string* const before = lineOf(key)) {
        *before = line;
    } else {
        _lines.push_back(line);
    }
    if (problem || _path.empty()) return problem;
    std::string text;
    for (const std::string& one : _lines)
        text += one + "\n";
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), error);
    return codec::writeFileAtomically(_path, codec::Bytes(text.begin(), text.end()));
}

}  // namespace kalim
