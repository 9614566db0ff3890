#pragma once

#include <string>

namespace kalim::cli {

// The exit status of whatever went wrong.
constexpr int failure = 2;

// Both write a line on standard error, safe for a terminal whatever names it holds. The second
// answers with `failure`.
void say(const std::string& sentence);
int complain(const std::string& sentence);

}  // namespace kalim::cli
