#include "kalimkit/store/WorkFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kalim::store {

namespace {

namespace fs = std::filesystem;

constexpr mode_t usersAlone = S_IRUSR | S_IWUSR;
constexpr const char* log = "-wal";
// An index of the log, made anew from it.
constexpr const char* logIndex = "-shm";

// With the folders above it, each for the user alone, as the convention for such folders wants.
int makeFolder(const fs::path& folder) {
    std::error_code error;
    if (folder.empty() || fs::is_directory(folder, error)) return 0;
    if (folder.has_parent_path() && folder.parent_path() != folder) {
        if (const int problem = makeFolder(folder.parent_path())) return problem;
    }
    return ::mkdir(folder.c_str(), S_IRWXU) == 0 || errno == EEXIST ? 0 : errno;
}

}  // namespace

std::string usualPath() {
    constexpr const char* name = "/kalimkit/works.sqlite";
    const char* const state = std::getenv("XDG_STATE_HOME");
    // A relative one is invalid by the convention that names it.
    if (state && *state == '/') return std::string(state) + name;
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? std::string(home) + "/.local/state" + name : "";
}

int makePrivately(const std::string& path) {
    if (const int problem = makeFolder(fs::path(path).parent_path())) return problem;
    // SQLite gives what it makes beside a file the mode of the file.
    const int file = ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, usersAlone);
    if (file < 0) return errno == EEXIST ? 0 : errno;
    ::close(file);
    return 0;
}

void closeToOthers(const std::string& path) {
    for (const char* const ending : {"", log, logIndex}) {
        const std::string name = path + ending;
        struct stat status {};
        if (::stat(name.c_str(), &status) == 0 && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
            ::chmod(name.c_str(), usersAlone);
        }
    }
}

bool isThere(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}

bool removeFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0;
}

std::string identityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

std::string setAside(const std::string& path) {
    std::error_code error;
    std::string aside = path + ".damaged";
    for (int number = 2; fs::exists(fs::symlink_status(aside, error)); ++number)
        aside = path + ".damaged-" + std::to_string(number);
    if (std::rename(path.c_str(), aside.c_str()) != 0) return {};
    std::rename((path + log).c_str(), (aside + log).c_str());
    std::remove((path + logIndex).c_str());
    return aside;
}

std::vector<std::string> filesSetAside(const std::string& path) {
    std::vector<std::string> found;
    const std::string beginning = fs::path(path).filename().string() + ".damaged";
    std::error_code error;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::path(path).parent_path(), error)) {
        if (entry.path().filename().string().starts_with(beginning)) {
            found.push_back(entry.path().string());
        }
    }
    std::ranges::sort(found);
    return found;
}

}  // namespace kalim::store
