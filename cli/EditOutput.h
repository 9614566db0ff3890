#pragma once

#include <optional>
#include <string>

#include "cli/Edit.h"
#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::cli {

// Where the result of an edit goes, and as what.
class EditOutput {
public:
    // Empty after an error, and `problem` says what stands in the way; so that nobody draws what
    // cannot be kept.
    static std::optional<EditOutput> make(const EditOptions& options, codec::ByteSpan photo,
                                          std::string& problem);

    // Why no picture of this size can be written; nothing where one can.
    std::optional<std::string> problemOf(gfx::PixelSize size) const;
    // The picture that is edited is another one by now, of this file or, for an empty path, of the
    // clipboard. The result takes its name and format, where the options have fixed none.
    void follow(const EditOptions& options, const std::string& path);

    // How the picture is to be encoded.
    codec::SavingOptions savingOptions() const { return cli::savingOptions(_writing, _format); }
    // All of it or nothing. Nothing on success, else a sentence that says what went wrong; after
    // that it may be tried again. A PNG picture carries the text of a document, if any, inside.
    std::optional<std::string> write(const codec::SavedPicture& picture,
                                     const std::string& inside = {});
    // The same, and what is written without a name of its own stays there from now on.
    std::optional<std::string> save(const codec::SavedPicture& picture, const std::string& inside);
    // To a place that the user has chosen, in the format that this is called by, and nowhere else
    // the next time.
    codec::SavingOptions savingOptionsFor(const std::string& path) const;
    std::optional<std::string> writeTo(const std::string& path, const codec::SavedPicture& picture,
                                       const std::string& inside);
    // Whether there is a file that it goes to, however that will be called.
    bool isFile() const { return !_path.empty() || !_stem.empty(); }
    // What was written last, as it is to be told; empty for standard output.
    const std::string& written() const { return _written; }
    // Empty for standard output and for a name that is chosen only when it is written.
    const std::string& path() const { return _path; }

private:
    EditOutput() = default;
    void nameAfter(const std::string& photo);
    std::string freeName() const;
    std::optional<std::string> writeUnderFreeName(const codec::Bytes& bytes, std::string& path);

    PictureWriting _writing;
    // It is copied alone.
    bool _isNowhere = false;
    PictureFormat _format = PictureFormat::Png;
    // Empty means standard output.
    std::string _path;
    // Instead of the path: what stands before and behind "-marked".
    std::string _stem;
    std::string _ending;
    std::string _written;
};

}  // namespace kalim::cli
