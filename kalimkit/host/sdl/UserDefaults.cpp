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

// More than any file of such has.
constexpr std::uint64_t longestFile = 1 << 20;

std::string escaped(std::string_view text) {
    std::string line;
    for (const char letter : text) {
        if (letter == '\\' || letter == '\n') line += '\\';
        line += letter == '\n' ? 'n' : letter;
    }
    return line;
}

std::string unescaped(std::string_view line) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isEscape = line[i] == '\\' && i + 1 < line.size();
        if (isEscape) ++i;
        text += isEscape && line[i] == 'n' ? '\n' : line[i];
    }
    return text;
}

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
    const auto found = text(key);
    if (!found || (*found != "true" && *found != "false")) return std::nullopt;
    return *found == "true";
}

std::optional<std::string> UserDefaults::text(const std::string& key) {
    if (!_isRead) readLines();
    const std::string* const line = lineOf(key);
    return line ? std::optional(unescaped(std::string_view(*line).substr(key.size() + 1)))
                : std::nullopt;
}

std::optional<std::string> UserDefaults::setValue(const std::string& key, bool value) {
    return setTexts({{key, value ? "true" : "false"}});
}

std::optional<std::string> UserDefaults::setTexts(const std::map<std::string, std::string>& texts) {
    const auto isKnown = [this](const auto& each) { return text(each.first) == each.second; };
    if (std::ranges::all_of(texts, isKnown)) return std::nullopt;
    // Another process may have written meanwhile.
    const auto problem = readLines();
    for (const auto& [key, text] : texts) {
        const std::string line = key + "=" + escaped(text);
        if (std::string* const before = lineOf(key)) {
            *before = line;
        } else {
            _lines.push_back(line);
        }
    }
    if (problem || _path.empty()) return problem;
    std::string whole;
    for (const std::string& one : _lines)
        whole += one + "\n";
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(_path).parent_path(), error);
    return codec::writeFileAtomically(_path, codec::Bytes(whole.begin(), whole.end()));
}

}  // namespace kalim
