#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "cli/Edit.h"
#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/host/sdl/SdlWindow.h"
#include "kalimkit/host/seat/WorkRecorder.h"

namespace kalim::cli {

// Has the drawings of one window survive a crash, and goes on with those that one has left. What
// stands in the way is told on standard error in one line, and the editor goes on without.
class EditRecovery {
public:
    // A file as it was opened.
    struct File {
        // Without its folder.
        std::string name;
        codec::Bytes bytes;
        std::string sha256;
    };
    static File makeFile(const std::string& path, codec::Bytes bytes);

    // The window outlives this object.
    EditRecovery(SdlWindow& window, EditOptions::Recovery choice);

    // The picture that a work of the file has begun with, by the hash of its bytes, which is empty
    // for a picture that is the file itself. Works on a picture that was pasted in the place of the
    // file's have its bytes with them; null else.
    using PictureOf =
        std::function<gfx::ImageRef(const std::string& sha256, const codec::Bytes* pasted)>;
    // The window's editor shows the file: goes on with unfinished work, or asks whether to.
    // `whenNone` is called once there is none, or the user does not want any.
    void start(File file, PictureOf pictureOf, std::function<void()> whenNone);
    // Another picture or document has taken its place: that of a file, or of the clipboard for an
    // empty path.
    void follow(const std::string& path);
    // The document that is edited was saved: its work is found by the file's new bytes from now on.
    void save(const std::string& path);
    // What was drawn was sent or discarded.
    void end();

private:
    void followClipboard();
    void offer();
    std::optional<ui::WorkSummary> heldWork() const;
    void goOnWith(const std::string& id);

    SdlWindow& _window;
    EditOptions::Recovery _choice;
    // Null where nothing is recorded.
    std::shared_ptr<WorkRecorder> _recorder;
    std::string _sha256;
    PictureOf _pictureOf;
    std::function<void()> _whenNone;
};

}  // namespace kalim::cli
