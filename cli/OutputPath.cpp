#include "cli/OutputPath.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

}  // namespace

std::string pathProblem(const std::string& path) {
    std::error_code error;
    if (fs::is_directory(path, error)) return path + ": this is a folder";
    fs::path folder = fs::path(path).parent_path();
    if (folder.empty()) folder = ".";
    if (!fs::is_directory(folder, error)) return path + ": there is no folder " + folder.string();
    const bool exists = fs::exists(path, error);
    if (::access(exists ? path.c_str() : folder.c_str(), W_OK) != 0) {
        return path + ": " + std::strerror(errno);
    }
    return {};
}

std::string freeName(const std::string& stem, const std::string& ending) {
    std::error_code error;
    std::string name = stem + ending;
    for (int number = 2; fs::exists(fs::symlink_status(name, error)); ++number)
        name = stem + "-" + std::to_string(number) + ending;
    return name;
}

bool isSameFile(const std::string& path, const std::string& other) {
    std::error_code error;
    return fs::equivalent(path, other, error) && !error;
}

}  // namespace kalim::cli
