#include "cli/EditOutput.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "cli/OutputPath.h"
#include "cli/OutputPattern.h"
#include "cli/StandardOutput.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/PngText.h"
#include "kalimkit/host/files/OpenedFile.h"

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

}  // namespace

std::optional<EditOutput> EditOutput::make(const EditOptions& options, codec::ByteSpan photo,
                                           std::string& problem) {
    EditOutput output;
    output._writing = options.writing;
    const bool isStandard =
        options.output == "-" || (options.output.empty() && options.photo == "-");
    const bool isNamed = !isStandard && !options.output.empty();
    const auto kept = isNamed ? pictureFormatOfPath(options.output) : pictureFormatOfBytes(photo);
    if (isNamed && !kept && !options.format) {
        problem = options.output + ": pictures are written as " + pictureEndings;
        return std::nullopt;
    }
    output._format = options.format.value_or(kept.value_or(PictureFormat::Png));
    // Where nobody has asked for another format, the one that can hold a document.
    if (options.isDocumentInside && !options.format && !isNamed)
        output._format = PictureFormat::Png;
    if (options.isDocumentInside && output._format != PictureFormat::Png) {
        problem = "--document-inside needs a PNG picture";
        return std::nullopt;
    }
    output._isNowhere = options.copies && options.output.empty();
    if (output._isNowhere) return output;
    if (isStandard) {
        if (::isatty(STDOUT_FILENO) == 0) return output;
        problem = "standard output is a terminal; name a file with -o";
        return std::nullopt;
    }
    if (isNamed) {
        output._path = expandedPath(options.output);
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
    if (!path.empty()) codec::readFile(path, start);
    _format = options.format.value_or(pictureFormatOfBytes(start).value_or(PictureFormat::Png));
    if (options.isDocumentInside) _format = PictureFormat::Png;
    if (_stem.empty()) return;
    const fs::path first = fs::path(options.photo).parent_path();
    const fs::path name = path.empty() ? "clipboard.png" : fs::path(path).filename();
    nameAfter(path.empty() ? (first / name).string() : path);
    // A result that cannot lie beside its picture lies beside the first one.
    if (!pathProblem(freeName()).empty()) nameAfter((first / name).string());
}

// Tries "photo-marked.jpg", then "photo-marked-2.jpg" and so on.
std::string EditOutput::freeName() const {
    return cli::freeName(_stem + "-marked", _ending);
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

std::optional<std::string> EditOutput::write(const codec::SavedPicture& picture,
                                             const std::string& inside) {
    if (_isNowhere) return std::nullopt;
    const bool isStandard = !isFile();
    std::string path = isStandard || !_path.empty() ? _path : freeName();
    auto problem = picture.error;
    codec::Bytes bytes = picture.bytes;
    if (!problem && !inside.empty()) problem = codec::addPngText(bytes, documentKeyword, inside);
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
    if (problem) return problem;
    _written = path;
    tellOf(picture, _writing, path);
    return std::nullopt;
}

std::optional<std::string> EditOutput::save(const codec::SavedPicture& picture,
                                            const std::string& inside) {
    auto problem = write(picture, inside);
    if (!problem && _path.empty()) _path = _written;
    return problem;
}

codec::SavingOptions EditOutput::savingOptionsFor(const std::string& path) const {
    return cli::savingOptions(_writing, pictureFormatOfPath(path).value_or(_format));
}

std::optional<std::string> EditOutput::writeTo(const std::string& path,
                                               const codec::SavedPicture& picture,
                                               const std::string& inside) {
    EditOutput other = *this;
    other._isNowhere = false;
    other._path = pictureFormatOfPath(path) ? path : path + endingOf(_format);
    auto problem = other.write(picture, inside);
    if (!problem) _written = other._written;
    return problem;
}

}  // namespace kalim::cli
