#pragma once

#include <string>

#include "kalimkit/codec/DecodeResult.h"
#include "kalimkit/editor/screen/EditorKeysDelegate.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim {

// What the editor's keys and the desktop ask for beyond the editor: pictures from the clipboard
// and from files, and to the clipboard. What fails is told in an alert.
class SdlWindow::Hands : public EditorKeysDelegate {
public:
    // The window outlives the editor's keys.
    explicit Hands(SdlWindow& window) : _window(window) {}

    void editorKeysCopyPicture(const gfx::ImageRef& image) override;
    void editorKeysPastePicture() override;
    // Whether the file holds a picture.
    bool openFile(const std::string& path);

private:
    // The path is empty for the clipboard's.
    bool open(codec::DecodeResult decoded, const std::string& path);

    SdlWindow& _window;
};

}  // namespace kalim
