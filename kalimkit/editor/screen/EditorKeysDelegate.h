#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// What a host may do with the result besides taking it in the end.
enum class EditorAction { Copy, Save, SaveAs };

// What keys ask of a host that has a clipboard for pictures, and files.
class KALIM_API EditorKeysDelegate {
public:
    virtual ~EditorKeysDelegate() = default;

    // Whether the host does it, so that there is a button for it.
    virtual bool editorKeysOffers(EditorAction /*action*/) const { return false; }
    // The picture with all that was drawn is to go to the clipboard.
    virtual void editorKeysCopyPicture(const gfx::ImageRef& /*image*/) {}
    // The clipboard's picture is to be opened: EditorKeys::openPicture().
    virtual void editorKeysPastePicture() {}
    // The result is to be written to where it belongs, or to where the user wants it, and the work
    // goes on. A host that did it says so by EditorRemote::showNote.
    virtual void editorKeysSavePicture(const gfx::ImageRef& /*image*/) {}
    virtual void editorKeysSavePictureAs(const gfx::ImageRef& /*image*/) {}
    // The drawing is to be saved as a document, and the work goes on; whether the host does that.
    virtual bool editorKeysSaveDocument() { return false; }
    // The user is to choose a picture or a document to open; whether the host asks.
    virtual bool editorKeysOpenFile() { return false; }
    // The window is to fill the screen, or no longer where it does; whether the host does that.
    virtual bool editorKeysToggleFullScreen() { return false; }
    // Enter where it would send, and Escape where it would close: whether the host does something
    // of its own instead.
    virtual bool editorKeysEnter() { return false; }
    virtual bool editorKeysEscape() { return false; }
};

}  // namespace kalim
