#include "kalimkit/codec/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "kalimkit/codec/NewFile.h"

namespace kalim::codec {

namespace {

namespace fs = std::filesystem;

// An open file that is closed at the end of the scope.
class OpenFile {
public:
    OpenFile(const std::string& path, int flags, mode_t mode = 0)
        : _descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    ~OpenFile() { close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return _descriptor >= 0; }
    int descriptor() const { return _descriptor; }
    // Some file systems report a failed write only here.
    bool close() {
        if (!isOpen()) return true;
        const int descriptor = _descriptor;
        _descriptor = -1;
        return ::close(descriptor) == 0;
    }

private:
    int _descriptor;
};

std::string message(const std::string& path, int error) {
    return path + ": " + std::generic_category().message(error);
}

// The system would end a name at a zero byte and so open another file than the one that is named.
std::optional<std::string> checkName(const std::string& path) {
    if (path.empty()) return "the name of a file is empty";
    const std::size_t zero = path.find('\0');
    if (zero == std::string::npos) return std::nullopt;
    return path.substr(0, zero) + ": the name of a file must not hold a zero byte";
}

// False leaves the reason in errno.
bool writeAll(int descriptor, ByteSpan bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

// The file that a chain of symbolic links ends at, which need not exist.
std::optional<fs::path> resolveLinks(const std::string& path) {
    constexpr int maxLinks = 40;
    fs::path target = path;
    for (int i = 0; i < maxLinks; ++i) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(target, error))) return target;
        const fs::path next = fs::read_symlink(target, error);
        if (error) return std::nullopt;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return std::nullopt;
}

// Gives the file owner and mode of the one that it replaces.
int takeAfter(int descriptor, const struct stat& existing) {
    // Only a privileged process may give a file away; for others it stays the writer's.
    const bool sameOwner = ::fchown(descriptor, existing.st_uid, existing.st_gid) == 0;
    const mode_t kept = sameOwner ? 07777 : 0777;
    return ::fchmod(descriptor, existing.st_mode & kept) == 0 ? 0 : errno;
}

// The new name is on the disk only when its folder is. The file is complete without it, so a file
// system that cannot sync folders is no error.
void syncFolder(const fs::path& folder) {
    const OpenFile opened(folder.empty() ? "." : folder.string(), O_RDONLY | O_DIRECTORY);
    if (opened.isOpen()) ::fsync(opened.descriptor());
}

// Answers with 0 or an errno.
int replaceFile(const fs::path& target, ByteSpan bytes, const struct stat* existing) {
    NewFile file(target);
    int error = file.error();
    if (error == 0 && existing) error = takeAfter(file.descriptor(), *existing);
    if (error == 0) error = file.fill(bytes);
    if (error == 0) error = file.replaceTarget();
    if (error != 0) return error;
    syncFolder(target.parent_path());
    NewFile::removeLeftovers(target.parent_path());
    return 0;
}

int writeInPlace(const std::string& path, ByteSpan bytes) {
    OpenFile file(path, O_WRONLY);
    if (!file.isOpen() || !writeAll(file.descriptor(), bytes)) return errno;
    return file.close() ? 0 : errno;
}

int writeOrReplace(const std::string& path, ByteSpan bytes) {
    struct stat existing {};
    const bool exists = ::stat(path.c_str(), &existing) == 0;
    if (!exists && errno != ENOENT) return errno;
    if (exists && S_ISDIR(existing.st_mode)) return EISDIR;
    if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return errno;
    if (exists && !S_ISREG(existing.st_mode)) return writeInPlace(path, bytes);
    const std::optional<fs::path> target = resolveLinks(path);
    return target ? replaceFile(*target, bytes, exists ? &existing : nullptr) : ELOOP;
}

}  // namespace

std::optional<std::string> readFile(const std::string& path, Bytes& bytes, std::uint64_t maxBytes) {
    return readFileIf(path, bytes, maxBytes, [](ByteSpan) { return true; });
}

std::optional<std::string> readFileIf(const std::string& path, Bytes& bytes, std::uint64_t maxBytes,
                                      const std::function<bool(ByteSpan start)>& goesOn) {
    bytes.clear();
    if (const auto problem = checkName(path)) return problem;
    const OpenFile file(path, O_RDONLY);
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0) return message(path, errno);
    if (S_ISDIR(status.st_mode)) return message(path, EISDIR);
    const std::string isTooLong =
        path + ": the file is longer than " + std::to_string(maxBytes) + " bytes";
    if (S_ISREG(status.st_mode)) {
        if (static_cast<std::uint64_t>(status.st_size) > maxBytes) return isTooLong;
        bytes.reserve(static_cast<std::size_t>(status.st_size));
    }
    std::array<std::uint8_t, 1 << 16> block{};
    for (;;) {
        const ssize_t count = ::read(file.descriptor(), block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        const int error = count < 0 ? errno : 0;
        if (error == 0 && count == 0) return std::nullopt;
        if (error == 0 && bytes.size() + static_cast<std::uint64_t>(count) <= maxBytes) {
            bytes.insert(bytes.end(), block.begin(), block.begin() + count);
            const bool isStart = bytes.size() - static_cast<std::size_t>(count) < startLength;
            if (!isStart || bytes.size() < startLength) continue;
            if (goesOn(ByteSpan(bytes).first(startLength))) continue;
            bytes.resize(startLength);
            return std::nullopt;
        }
        bytes.clear();
        return error != 0 ? message(path, error) : isTooLong;
    }
}

std::optional<std::string> writeFileAtomically(const std::string& path, ByteSpan bytes) {
    if (const auto problem = checkName(path)) return problem;
    if (const int error = writeOrReplace(path, bytes)) return message(path, error);
    return std::nullopt;
}

std::optional<std::string> writeNewFile(const std::string& path, ByteSpan bytes, bool& isTaken) {
    isTaken = false;
    if (const auto problem = checkName(path)) return problem;
    NewFile file(path);
    int error = file.error();
    if (error == 0) error = file.fill(bytes);
    if (error == 0) error = file.becomeTarget();
    isTaken = error == EEXIST;
    if (error != 0) return message(path, error);
    const fs::path folder = fs::path(path).parent_path();
    syncFolder(folder);
    NewFile::removeLeftovers(folder);
    return std::nullopt;
}

}  // namespace kalim::codec
