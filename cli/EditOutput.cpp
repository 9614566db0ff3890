#include "cli/EditOutput.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/StandardOutput.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

// Why no file can be made or replaced at the path, as far as that can be told beforehand.
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

}  // namespace

std::optional<EditOutput> EditOutput::make(const EditOptions& options, codec::ByteSpan photo,
                                           std::string& problem) {
    EditOutput output;
    const bool isStandard =
        options.output == "-" || (options.output.empty() && options.photo == "-");
    const bool isNamed = !isStandard && !options.output.empty();
    const auto kept = isNamed ? pictureFormatOfPath(options.output) : pictureFormatOfBytes(photo);
    if (isNamed && !kept && !options.format) {
        problem = options.output + ": pictures are written as " + pictureEndings;
        return std::nullopt;
    }
    output._format = options.format.value_or(kept.value_or(PictureFormat::Png));
    if (isStandard) {
        if (::isatty(STDOUT_FILENO) == 0) return output;
        problem = "standard output is a terminal; name a file with -o";
        return std::nullopt;
    }
    if (isNamed) {
        output._path = options.output;
    } else {
        output.nameAfter(options.photo);
    }
    problem = pathProblem(isNamed ? output._path : output.freeName());
    return problem.empty() ? std::optional(output) : std::nullopt;
}

void EditOutput::nameAfter(const std::string& photo) {
    const fs::path path(photo);
    _stem = (path.parent_path() / path.stem()).string();
    const bool isSame = pictureFormatOfPath(photo) == _format;
    _ending = isSame ? path.extension().string() : endingOf(_format);
}

void EditOutput::follow(const EditOptions& options, const std::string& path) {
    if (!_path.empty()) return;
    codec::Bytes start;
    const auto isEnough = [](codec::ByteSpan) { return false; };
    if (!path.empty()) codec::readFileIf(path, start, UINT64_MAX, isEnough);
    _format = options.format.value_or(pictureFormatOfBytes(start).value_or(PictureFormat::Png));
    if (_stem.empty()) return;
    const fs::path first = fs::path(options.photo).parent_path();
    const fs::path name = path.empty() ? "clipboard.png" : fs::path(path).filename();
    nameAfter(path.empty() ? (first / name).string() : path);
    // A result that cannot lie beside its picture lies beside the first one.
    if (!pathProblem(freeName()).empty()) nameAfter((first / name).string());
}

// Tries "photo-marked.jpg", then "photo-marked-2.jpg" and so on.
std::string EditOutput::freeName() const {
    std::error_code error;
    std::string name = _stem + "-marked" + _ending;
    for (int number = 2; fs::exists(fs::symlink_status(name, error)); ++number)
        name = _stem + "-marked-" + std::to_string(number) + _ending;
    return name;
}

std::optional<std::string> EditOutput::problemOf(gfx::PixelSize size) const {
    if (_format != PictureFormat::Webp) return std::nullopt;
    if (std::max(size.width, size.height) <= codec::longestWebpSide) return std::nullopt;
    return "a WebP picture has sides of at most " + std::to_string(codec::longestWebpSide) +
           " pixels; choose another format with -f";
}

// Another editor may take the name that was free a moment ago.
std::optional<std::string> EditOutput::writeUnderFreeName(const codec::Bytes& bytes,
                                                          std::string& path) {
    bool isTaken = true;
    std::optional<std::string> problem;
    while (isTaken) {
        path = freeName();
        problem = codec::writeNewFile(path, bytes, isTaken);
    }
    return problem;
}

std::optional<std::string> EditOutput::write(const gfx::Image& image) {
    const bool isStandard = _path.empty() && _stem.empty();
    std::string path = isStandard || !_path.empty() ? _path : freeName();
    codec::Bytes bytes;
    auto problem = encode(image, _format, bytes);
    if (problem) return (isStandard ? "standard output" : path) + ": " + *problem;
    if (isStandard) {
        StandardOutput standard;
        standard.write(bytes);
        problem = standard.error();
    } else if (_path.empty()) {
        problem = writeUnderFreeName(bytes, path);
    } else {
        problem = codec::writeFileAtomically(path, bytes);
    }
    if (!problem) _written = path;
    return problem;
}

}  // namespace kalim::cli
