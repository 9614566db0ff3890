#pragma once

#include <memory>
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

    // The window's editor shows the file, whose picture is `picture`: goes on with unfinished work,
    // or asks whether to.
    void start(File file, const gfx::ImageRef& picture);
    // Another picture has taken its place: that of a file, or of the clipboard for an empty path.
    void follow(const std::string& path);
    // What was drawn was sent or discarded.
    void end();

private:
    void offer();
    void goOnWith(const std::string& id);

    SdlWindow& _window;
    EditOptions::Recovery _choice;
    // Null where nothing is recorded.
    std::shared_ptr<WorkRecorder> _recorder;
    std::string _sha256;
    gfx::ImageRef _picture;
};

}  // namespace kalim::cli
