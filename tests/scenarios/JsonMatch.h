#pragma once

#include <string>

namespace kalim::test {

// Holds a printed line against an expected one, both JSON. Numbers agree within a millionth,
// absolutely or relatively. An object may have keys that the expected one does not name; lists
// agree element by element. What differs, with its place, or empty when nothing does.
std::string differenceOfJson(const std::string& expected, const std::string& actual);

}  // namespace kalim::test
