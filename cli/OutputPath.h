#pragma once

#include <string>

namespace kalim::cli {

// Why no file can be made or replaced at the path, as far as that can be told beforehand; empty
// where it can.
std::string pathProblem(const std::string& path);
// The first name that nothing has of "stem.png", "stem-2.png" and so on.
std::string freeName(const std::string& stem, const std::string& ending);
// Whether both lead to one file that exists.
bool isSameFile(const std::string& path, const std::string& other);

}  // namespace kalim::cli
