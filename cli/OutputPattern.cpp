#include "cli/OutputPattern.h"

#include <cstdlib>
#include <vector>

namespace kalim::cli {

namespace {

std::string atHome(const std::string& path) {
    const char* const home = std::getenv("HOME");
    const bool isAtHome = path == "~" || path.starts_with("~/");
    return isAtHome && home && *home ? home + path.substr(1) : path;
}

}  // namespace

std::string expandedPath(const std::string& pattern, std::time_t now) {
    constexpr std::size_t longest = 4096;
    if (pattern.find('%') == std::string::npos) return atHome(pattern);
    std::tm time{};
    std::vector<char> text(longest);
    if (!::localtime_r(&now, &time)) return atHome(pattern);
    // A pattern that comes to nothing, or to too much, stays as it is.
    const std::size_t length = std::strftime(text.data(), text.size(), pattern.c_str(), &time);
    return atHome(length > 0 ? std::string(text.data(), length) : pattern);
}

std::string expandedPath(const std::string& pattern) {
    return expandedPath(pattern, std::time(nullptr));
}

}  // namespace kalim::cli
