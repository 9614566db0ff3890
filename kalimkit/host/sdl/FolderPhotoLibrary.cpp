#include "kalimkit/host/sdl/FolderPhotoLibrary.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <optional>
#include <sstream>
#include <system_error>
#include <vector>

#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

namespace fs = std::filesystem;
using ui::PhotoLibraryError;

// More than any list of the user's folders has.
constexpr std::uint64_t longestList = 1 << 20;
constexpr int mostNames = 10000;

PhotoLibraryError problem(const fs::path& path, const std::error_code& error) {
    return {path.string() + ": " + error.message()};
}

// Reads "2024-01-31 17.05.09" by the clock on the wall.
std::string nameOfNow() {
    const auto now = static_cast<std::time_t>(ui::Environment::current().wallClock());
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H.%M.%S", &parts)};
}

// Tries "name.png", "name 2.png" and so on until one is not taken; empty after an error.
fs::path firstFree(const fs::path& folder, const fs::path& name, std::error_code& error,
                   const std::function<std::error_code(const fs::path&)>& make) {
    for (int number = 1; number <= mostNames; ++number) {
        const std::string count = number == 1 ? "" : " " + std::to_string(number);
        const fs::path path = folder / (name.stem().string() + count + name.extension().string());
        error = make(path);
        if (error != std::errc::file_exists) return error ? fs::path() : path;
    }
    return {};
}

// Takes a name, so that nobody else does, by an empty file.
std::error_code reserve(const fs::path& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) return {errno, std::generic_category()};
    ::close(file);
    return {};
}

std::error_code linkOrCopy(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (!error || error == std::errc::file_exists) return error;
    // Not every disk can do this.
    if ((error = reserve(to))) return error;
    codec::Bytes bytes;
    if (!codec::readFile(from.string(), bytes) && !codec::writeFileAtomically(to.string(), bytes)) {
        return {};
    }
    fs::remove(to, error);
    return std::make_error_code(std::errc::io_error);
}

// What a list of the user's folders says about one of them, "$HOME" resolved.
fs::path listedFolder(const std::string& list, const std::string& key, const fs::path& home) {
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.starts_with(key + "=\"")) continue;
        std::string value;
        for (std::size_t at = key.size() + 2; at < line.size() && line[at] != '"'; ++at) {
            if (line[at] == '\\' && at + 1 < line.size()) ++at;
            value += line[at];
        }
        if (value.starts_with("$HOME/")) return home / value.substr(6);
        if (value.starts_with("/")) return value;
    }
    return {};
}

}  // namespace

fs::path FolderPhotoLibrary::usualFolder() {
    const char* const home = std::getenv("HOME");
    if (!home || *home != '/') return {};
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    // A relative one is invalid by the convention that names it.
    const fs::path folder = config && *config == '/' ? config : fs::path(home) / ".config";
    codec::Bytes bytes;
    if (!codec::readFile((folder / "user-dirs.dirs").string(), bytes, longestList)) {
        const fs::path listed =
            listedFolder({bytes.begin(), bytes.end()}, "XDG_PICTURES_DIR", home);
        if (!listed.empty()) return listed;
    }
    return fs::path(home) / "Pictures";
}

void FolderPhotoLibrary::writeImage(const gfx::ImageRef& image, const Written& written) {
    if (_folder.empty()) return written({}, PhotoLibraryError{"there is no folder for pictures"});
    const gfx::ImageRef upright = MDrawImageUtil::fixOrientation(image);
    if (!upright) return written({}, PhotoLibraryError{"there is no picture to write"});
    codec::Bytes bytes;
    if (const auto message = codec::encodePng(*upright->pixels(), bytes)) {
        return written({}, PhotoLibraryError{_folder.string() + ": " + *message});
    }
    std::error_code error;
    fs::create_directories(_folder, error);
    if (error) return written({}, problem(_folder, error));
    const fs::path path = firstFree(_folder, nameOfNow() + ".png", error, reserve);
    if (path.empty()) return written({}, problem(_folder, error));
    // Beside and renamed, so that nobody ever sees a part of it.
    if (const auto message = codec::writeFileAtomically(path.string(), bytes)) {
        fs::remove(path, error);
        return written({}, PhotoLibraryError{*message});
    }
    written(path.string(), std::nullopt);
}

void FolderPhotoLibrary::listAlbums(const Listed& listed) {
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(_folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code unknown;
        if (!name.starts_with(".") && entry->is_directory(unknown)) names.push_back(name);
    }
    // Before the first photo there is nothing.
    if (error && error != std::errc::no_such_file_or_directory) {
        return listed({}, problem(_folder, error));
    }
    std::ranges::sort(names);
    listed(names, std::nullopt);
}

void FolderPhotoLibrary::addAlbum(const std::string& name, const Done& done) {
    const bool isName = !name.empty() && !name.starts_with(".") &&
                        name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
    if (_folder.empty() || !isName) {
        return done(PhotoLibraryError{name + ": an album cannot have this name"});
    }
    std::error_code error;
    const bool isNew = fs::create_directories(_folder / name, error);
    if (!error && !isNew) error = std::make_error_code(std::errc::file_exists);
    done(error ? Error(problem(_folder / name, error)) : std::nullopt);
}

void FolderPhotoLibrary::addToAlbum(const std::string& address, const std::string& album,
                                    const Done& done) {
    std::error_code error;
    const fs::path photo = address;
    if (!fs::is_regular_file(photo, error)) {
        return done(PhotoLibraryError{address + ": there is no such photo"});
    }
    if (album.empty() || !fs::is_directory(_folder / album, error)) {
        return done(PhotoLibraryError{album + ": there is no such album"});
    }
    firstFree(_folder / album, photo.filename(), error,
              [&](const fs::path& path) { return linkOrCopy(photo, path); });
    done(error ? Error(problem(_folder / album, error)) : std::nullopt);
}

}  // namespace kalim
