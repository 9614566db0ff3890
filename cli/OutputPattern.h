#pragma once

#include <ctime>
#include <string>

namespace kalim::cli {

// The path that a user means: "~/" at its beginning is the home folder, and "%Y-%m-%d" and the
// like, as strftime() knows them, are the local time; "%%" is a percent sign. "-" stays.
std::string expandedPath(const std::string& pattern, std::time_t now);
// Of now.
std::string expandedPath(const std::string& pattern);

}  // namespace kalim::cli
