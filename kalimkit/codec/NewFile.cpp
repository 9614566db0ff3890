#include "kalimkit/codec/NewFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace kalim::codec {

namespace {

namespace fs = std::filesystem;

constexpr mode_t usualMode = 0666;
constexpr std::string_view leftoverStart = ".kalim-";
constexpr std::string_view leftoverEnd = ".tmp";

fs::path folderOf(const fs::path& target) {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

// A name of its own in the target's folder, where a rename needs no copying. It is short, so that
// it fits wherever the target's name does.
fs::path temporaryName(const fs::path& target) {
    static std::atomic<unsigned> counter{0};
    return folderOf(target) / (std::string(leftoverStart) + std::to_string(::getpid()) + "-" +
                               std::to_string(counter++) + std::string(leftoverEnd));
}

bool isTemporaryName(std::string_view name) {
    if (!name.starts_with(leftoverStart) || !name.ends_with(leftoverEnd)) return false;
    name.remove_prefix(leftoverStart.size());
    name.remove_suffix(std::min(leftoverEnd.size(), name.size()));
    return !name.empty() && name.find_first_not_of("0123456789-") == std::string_view::npos;
}

// Whether the file was made by this user and no living writer holds it.
bool isLeftover(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_uid == ::geteuid() && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

NewFile::SignalPause::SignalPause() {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaddset(&ending, signal);
    ::pthread_sigmask(SIG_BLOCK, &ending, &_before);
}

NewFile::SignalPause::~SignalPause() {
    ::pthread_sigmask(SIG_SETMASK, &_before, nullptr);
}

NewFile::NewFile(fs::path target) : _target(std::move(target)) {
    constexpr int maxAttempts = 100;
    if (openUnnamed()) return;
    _pause.emplace();
    int attempt = 0;
    while (!openNamed() && _error == EEXIST && ++attempt < maxAttempts) {
    }
}

NewFile::~NewFile() {
    dropName();
    if (_descriptor >= 0) ::close(_descriptor);
}

// A file without a name gets one by way of /proc only.
bool NewFile::openUnnamed() {
    if (::access("/proc/self/fd", X_OK) != 0) return false;
    _descriptor = ::open(folderOf(_target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, usualMode);
    if (_descriptor >= 0) ::flock(_descriptor, LOCK_EX | LOCK_NB);
    return _descriptor >= 0;
}

bool NewFile::openNamed() {
    fs::path name = temporaryName(_target);
    _descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, usualMode);
    _error = _descriptor < 0 ? errno : 0;
    if (_descriptor < 0) return false;
    ::flock(_descriptor, LOCK_EX | LOCK_NB);
    struct stat status {};
    if (::fstat(_descriptor, &status) == 0 && status.st_nlink > 0) {
        _temporary = std::move(name);
        return true;
    }
    // Taken for a leftover before it was locked.
    ::close(std::exchange(_descriptor, -1));
    _error = EEXIST;
    return false;
}

int NewFile::fill(ByteSpan bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return ::fsync(_descriptor) == 0 ? 0 : errno;
}

int NewFile::giveName(const fs::path& name) const {
    if (!_temporary.empty()) {
        return ::link(_temporary.c_str(), name.c_str()) == 0 ? 0 : errno;
    }
    const std::string own = "/proc/self/fd/" + std::to_string(_descriptor);
    return ::linkat(AT_FDCWD, own.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0
                                                                                           : errno;
}

void NewFile::dropName() {
    if (!_temporary.empty()) ::unlink(_temporary.c_str());
    _temporary.clear();
}

int NewFile::replaceTarget() {
    if (!_pause) _pause.emplace();
    while (_temporary.empty()) {
        fs::path name = temporaryName(_target);
        const int error = giveName(name);
        if (error == 0) {
            _temporary = std::move(name);
        } else if (error != EEXIST) {
            return error;
        }
    }
    if (::rename(_temporary.c_str(), _target.c_str()) != 0) return errno;
    _temporary.clear();
    _pause.reset();
    return 0;
}

int NewFile::becomeTarget() {
    const int error = giveName(_target);
    if (error == 0 || error == EEXIST) return error;
    // Not every disk has links: there the name is taken by an empty file first.
    const int taken = ::open(_target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, usualMode);
    if (taken < 0) return errno;
    ::close(taken);
    const int problem = replaceTarget();
    if (problem != 0) ::unlink(_target.c_str());
    return problem;
}

void NewFile::removeLeftovers(const fs::path& folder) {
    // The standard library's iterator ends the process when it finds no memory.
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(
        ::opendir(folder.empty() ? "." : folder.c_str()), &::closedir);
    while (const dirent* const entry = entries ? ::readdir(entries.get()) : nullptr) {
        if (!isTemporaryName(entry->d_name)) continue;
        const int place = ::dirfd(entries.get());
        const int descriptor =
            ::openat(place, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0) continue;
        if (isLeftover(descriptor)) ::unlinkat(place, entry->d_name, 0);
        ::close(descriptor);
    }
}

}  // namespace kalim::codec
