#pragma once

#include <string>

#include "kalimkit/editor/screen/EditorKeysDelegate.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim {

// What the editor's keys and the desktop ask for beyond the editor: pictures from the clipboard
// and from files, and to the clipboard. What fails is told in an alert.
class SdlWindow::Hands : public EditorKeysDelegate {
public:
    // The window outlives the editor's keys.
    explicit Hands(SdlWindow& window) : _window(window) {}

    bool editorKeysOffers(EditorAction action) const override;
    void editorKeysCopyPicture(const gfx::ImageRef& image) override;
    void editorKeysSavePicture(const gfx::ImageRef& image) override;
    void editorKeysSavePictureAs(const gfx::ImageRef& image) override;
    void editorKeysPastePicture() override;
    bool editorKeysSaveDocument() override;
    bool editorKeysOpenFile() override;
    bool editorKeysToggleFullScreen() override;
    bool editorKeysEnter() override;
    bool editorKeysEscape() override;
    // Opens a picture or a document. With a picture that has one inside the user is asked.
    void openFile(const std::string& path);

private:
    // The path is empty for the clipboard's.
    void open(OpenedFile opened, const std::string& path);
    void refuse(const std::string& reason);
    void took(const std::string& path, bool isDocument) const;

    SdlWindow& _window;
};

}  // namespace kalim
