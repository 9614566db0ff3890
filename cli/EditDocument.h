#pragma once

#include <optional>
#include <string>

#include "cli/Edit.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/PictureOrigins.h"

namespace kalim::cli {

// Where an edit saves its document, and how.
class EditDocument {
public:
    explicit EditDocument(const EditOptions& options) : _options(options) {}

    // Why no document can be saved as the options want it, the result being written to `output`;
    // empty where it can. A photo that is opened need not have been read.
    static std::string problemOf(const EditOptions& options, const std::string& output,
                                 const OpenedFile& opened);

    // What is edited is this file now, or the clipboard's picture for an empty path.
    void follow(const std::string& path, bool isDocument);

    // Whether a document goes along with the result.
    bool isSentAlong() const { return !_options.document.empty() || !_opened.empty(); }
    // In the place of the file that it is for, or under a new name, which stays its own. All of it
    // or nothing; what is wrong begins with a name.
    std::optional<std::string> save(MDrawView& canvas, const PictureOrigins& origins);
    // Whether that was the document that is edited, which has other bytes then.
    bool hasSavedOpened() const { return !_opened.empty() && _saved == _opened; }
    // Where it was saved last.
    const std::string& saved() const { return _saved; }

private:
    std::optional<std::string> keepOthersWork(const std::string& path) const;
    std::optional<std::string> saveUnderNewName(MDrawView& canvas, const PictureOrigins& origins);

    const EditOptions& _options;
    // The photo, without its ending.
    std::string _stem;
    // The document that is edited, or that was saved under a new name; empty for none.
    std::string _opened;
    std::string _own;
    std::string _saved;
    // The hash of what was read from or written to the document that is saved to; empty before.
    std::string _known;
};

}  // namespace kalim::cli
