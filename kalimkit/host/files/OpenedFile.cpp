#include "kalimkit/host/files/OpenedFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/PngText.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/Sha256.h"

namespace kalim {

namespace {

namespace fs = std::filesystem;

std::string_view letters(codec::ByteSpan bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

codec::ByteSpan bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// The place of a document's picture may not lead out of the document's folder.
bool leadsAway(const std::string& file) {
    const fs::path path(file);
    return path.is_absolute() || file.find('\0') != std::string::npos ||
           std::ranges::find(path, fs::path("..")) != path.end();
}

// Reading anything but a file may never end, or do something.
bool isPlainFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::optional<std::string> readLinked(DocumentPicture& picture, const std::string& folder) {
    if (leadsAway(picture.file)) {
        return "picture.file must be a path below the document's folder, not " + picture.file;
    }
    const std::string path = (fs::path(folder) / picture.file).string();
    std::error_code unseen;
    if (fs::exists(path, unseen) && !isPlainFile(path))
        return "picture.file: " + path + " is no file";
    codec::Bytes bytes;
    if (auto problem = codec::readFile(path, bytes)) return "picture.file: " + *problem;
    picture.data.assign(bytes.begin(), bytes.end());
    if (sha256(picture.data) == picture.sha256) return std::nullopt;
    return "picture.sha256 is not the hash of " + path;
}

gfx::PixelSize uprightSize(const codec::DecodeResult& picture) {
    gfx::PixelSize size = picture.bitmap.size();
    if (gfx::exchangesSides(picture.orientation)) std::swap(size.width, size.height);
    return size;
}

std::optional<std::string> decodePicture(OpenedFile& opened, const FileOpening& opening,
                                         const std::string& folder) {
    DocumentPicture& picture = *opened.document->picture;
    if (!picture.file.empty()) {
        if (auto problem = readLinked(picture, folder)) return problem;
        opened.picturePath = (fs::path(folder) / picture.file).string();
    }
    const std::string place = picture.file.empty() ? "picture.data" : "picture.file";
    opened.picture = opening.decode(bytesOf(picture.data), place, opening.limits);
    if (opened.picture.error) return std::exchange(opened.picture.error, std::nullopt);
    const gfx::PixelSize size = uprightSize(opened.picture);
    if (size == picture.size) return std::nullopt;
    return "picture.size is not that of the picture, which has " + std::to_string(size.width) +
           " x " + std::to_string(size.height) + " pixels";
}

std::optional<std::string> takeDocument(OpenedFile& opened, const FileOpening& opening,
                                        std::string_view text, const std::string& folder) {
    ReadDocument read = readDocument(text);
    if (read.problem) return std::move(read.problem);
    opened.document = std::move(read.document);
    auto problem = opened.document->picture ? decodePicture(opened, opening, folder) : std::nullopt;
    if (problem) opened.document.reset();
    return problem;
}

std::optional<std::string> takeInside(OpenedFile& opened, const FileOpening& opening,
                                      codec::PngText& inside, const std::string& folder) {
    opened.isInside = true;
    if (inside.error) return "the document inside is damaged";
    auto problem = takeDocument(opened, opening, inside.text, folder);
    return problem ? "the document inside: " + *problem : problem;
}

std::string folderOf(const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

}  // namespace

// An object of JSON, after a byte order mark and blanks, if anything but those
// is there yet.
bool mayBeDocument(codec::ByteSpan start) {
    std::string_view text = letters(start);
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string_view::npos ? !text.empty() : text[first] == '{';
}

OpenedFile openBytes(codec::Bytes bytes, const std::string& path, const FileOpening& opening) {
    const bool isPiped = path == "-";
    const std::string name = isPiped ? "standard input" : path;
    const std::string folder = isPiped ? "." : folderOf(path);
    OpenedFile opened;
    opened.bytes = std::move(bytes);
    const codec::ByteSpan file = opened.bytes;
    const bool isPicture = codec::mayBePicture(file);
    auto inside = isPicture && !opening.isFlat
                      ? codec::findPngText(file, documentKeyword, longestDocument)
                      : std::nullopt;
    if (!isPicture && mayBeDocument(file)) {
        opened.error = takeDocument(opened, opening, letters(file), folder);
    } else if (inside) {
        opened.error = takeInside(opened, opening, *inside, folder);
    } else {
        if (!isPiped) opened.picturePath = path;
        opened.picture = opening.decode(file, name, opening.limits);
        opened.error = std::exchange(opened.picture.error, std::nullopt);
        return opened;
    }
    if (opened.error) opened.error = name + ": " + *opened.error;
    return opened;
}

std::optional<std::string> readOpenable(const std::string& path, codec::Bytes& bytes) {
    const auto goesOn = [](codec::ByteSpan start) {
        return codec::mayBePicture(start) || mayBeDocument(start);
    };
    return codec::readFileIf(path == "-" ? "/dev/stdin" : path, bytes, longestDocument, goesOn);
}

OpenedFile openFile(const std::string& path, const FileOpening& opening) {
    OpenedFile opened;
    opened.error = readOpenable(path, opened.bytes);
    return opened.error ? opened : openBytes(std::move(opened.bytes), path, opening);
}

bool hasDocumentInside(codec::ByteSpan file) {
    // It need not be unpacked for that.
    return codec::findPngText(file, documentKeyword, 0).has_value();
}

}  // namespace kalim
