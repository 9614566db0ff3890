#include "cli/EditDocument.h"

#include <cstdint>
#include <filesystem>

#include "cli/Complaint.h"
#include "cli/OutputPath.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/files/SavedDocument.h"

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

// What nobody has named is called so.
constexpr const char* usualName = "drawing";

// Empty where there is nothing to read.
std::string hashOf(const std::string& path) {
    codec::Bytes bytes;
    if (path.empty() || codec::readFile(path, bytes)) return {};
    return sha256({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

bool isLinkedAlready(MDrawView& canvas) {
    const Document document = canvas.document();
    return document.picture && !document.picture->file.empty();
}

}  // namespace

std::string EditDocument::problemOf(const EditOptions& options, const std::string& output,
                                    const OpenedFile& opened) {
    const bool isDocument = opened.document && !opened.isInside;
    const std::string& path = options.document;
    if (options.isLinked && options.photo == "-")
        return "--link needs a photo in a file, and this one comes from standard input";
    if (options.isLinked && isSameFile(options.photo, output))
        return "--link needs the photo as it is, and " + output + " is to be written over it";
    if (options.isSealed && isDocument && !opened.document->isSealed &&
        (path.empty() || isSameFile(path, options.photo))) {
        return "--sealed would take what is hidden out of " + options.photo +
               " for good; name another file with --document";
    }
    if (path.empty()) return {};
    const std::string folder = fs::path(path).parent_path().string();
    if (options.isLinked && !isDocument && !isLinkable(options.photo, folder)) {
        return "--link: " + options.photo + " does not lie below the folder of " + path;
    }
    if (isSameFile(path, options.photo) && !isDocument)
        return "--document: " + path + " is the photo";
    const bool isOutput = path == output || isSameFile(path, output);
    if (isOutput) return "--document: " + path + " is where the picture goes";
    const std::string problem = pathProblem(path);
    return problem.empty() ? problem : "--document: " + problem;
}

void EditDocument::follow(const std::string& path, bool isDocument) {
    const fs::path photo(path.empty() || path == "-" ? usualName : path);
    const fs::path folder = path.empty() ? fs::path(_stem).parent_path() : photo.parent_path();
    _stem = (folder / photo.stem()).string();
    _opened = isDocument && path != "-" ? path : "";
    _own.clear();
    _known = hashOf(_opened);
}

// What somebody else has saved there meanwhile, or before, must not be lost without a word.
std::optional<std::string> EditDocument::keepOthersWork(const std::string& path) const {
    std::error_code error;
    if (!fs::is_regular_file(path, error) || hashOf(path) == _known) return std::nullopt;
    const std::string kept = freeName(path, "~");
    fs::copy_file(path, kept, error);
    if (error) return path + ": what is there cannot be kept as " + kept + ": " + error.message();
    say(path + " was not written here; what was in it is in " + kept + " now");
    return std::nullopt;
}

std::optional<std::string> EditDocument::save(MDrawView& canvas, const PictureOrigins& origins) {
    const std::string& path = !_options.document.empty() ? _options.document
                              : !_opened.empty()         ? _opened
                                                         : _own;
    if (path.empty()) return saveUnderNewName(canvas, origins);
    // A document that has its picture beside it keeps it there.
    const bool isLinked = _options.isLinked || (path == _opened && isLinkedAlready(canvas));
    auto problem = keepOthersWork(path);
    if (!problem)
        problem = saveDocument(
            canvas, origins,
            {_options.isSealed, isLinked && !_options.isSealed, _options.writing.metadata, true},
            path);
    if (problem) return problem;
    _saved = path;
    _known = hashOf(path);
    return std::nullopt;
}

// Another editor may take the name that was free a moment ago.
std::optional<std::string> EditDocument::saveUnderNewName(MDrawView& canvas,
                                                          const PictureOrigins& origins) {
    const std::string folder = fs::path(_stem).parent_path().string();
    std::string text;
    auto problem = documentTextOf(
        canvas, origins, {_options.isSealed, _options.isLinked, _options.writing.metadata, true},
        folder.empty() ? "." : folder, text);
    if (problem) return _stem + ".kalim: " + *problem;
    std::string path;
    bool isTaken = true;
    while (isTaken) {
        path = freeName(_stem, ".kalim");
        problem = codec::writeNewFile(
            path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, isTaken);
    }
    if (!problem) _saved = _own = path;
    if (!problem) _known = hashOf(path);
    return problem;
}

}  // namespace kalim::cli
