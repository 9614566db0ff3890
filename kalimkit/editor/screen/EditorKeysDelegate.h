#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// What keys ask of a host that has a clipboard for pictures, and files.
class KALIM_API EditorKeysDelegate {
public:
    virtual ~EditorKeysDelegate() = default;

    // The picture with all that was drawn is to go to the clipboard.
    virtual void editorKeysCopyPicture(const gfx::ImageRef& /*image*/) {}
    // The clipboard's picture is to be opened: EditorKeys::openPicture().
    virtual void editorKeysPastePicture() {}
    // The drawing is to be saved as a document, and the work goes on; whether the host does that.
    virtual bool editorKeysSaveDocument() { return false; }
    // The user is to choose a picture or a document to open; whether the host asks.
    virtual bool editorKeysOpenFile() { return false; }
    // The window is to fill the screen, or no longer where it does; whether the host does that.
    virtual bool editorKeysToggleFullScreen() { return false; }
};

}  // namespace kalim
