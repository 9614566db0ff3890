#include "cli/EditDocument.h"

#include <cstdint>
#include <filesystem>

#include "cli/OutputPath.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/host/files/SavedDocument.h"

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

// What nobody has named is called so.
constexpr const char* usualName = "drawing";

bool isLinkedAlready(MDrawView& canvas) {
    const Document document = canvas.document();
    return document.picture && !document.picture->file.empty();
}

}  // namespace

std::string EditDocument::problemOf(const EditOptions& options, const std::string& output,
                                    bool isDocument) {
    if (options.isLinked && options.photo == "-")
        return "--link needs a photo in a file, and this one comes from standard input";
    if (options.isLinked && isSameFile(options.photo, output))
        return "--link needs the photo as it is, and " + output + " is to be written over it";
    const std::string& path = options.document;
    if (path.empty()) return {};
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
}

std::optional<std::string> EditDocument::save(MDrawView& canvas, const PictureOrigins& origins) {
    const std::string& path = !_options.document.empty() ? _options.document
                              : !_opened.empty()         ? _opened
                                                         : _own;
    if (path.empty()) return saveUnderNewName(canvas, origins);
    // A document that has its picture beside it keeps it there.
    const bool isLinked = _options.isLinked || (path == _opened && isLinkedAlready(canvas));
    auto problem =
        saveDocument(canvas, origins, {_options.isSealed, isLinked && !_options.isSealed}, path);
    if (!problem) _saved = path;
    return problem;
}

// Another editor may take the name that was free a moment ago.
std::optional<std::string> EditDocument::saveUnderNewName(MDrawView& canvas,
                                                          const PictureOrigins& origins) {
    const std::string folder = fs::path(_stem).parent_path().string();
    std::string text;
    auto problem = documentTextOf(canvas, origins, {_options.isSealed, _options.isLinked},
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
    return problem;
}

}  // namespace kalim::cli
