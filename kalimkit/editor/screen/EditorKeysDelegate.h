#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// What keys ask of a host that has a clipboard for pictures.
class KALIM_API EditorKeysDelegate {
public:
    virtual ~EditorKeysDelegate() = default;

    // The picture with all that was drawn is to go to the clipboard.
    virtual void editorKeysCopyPicture(const gfx::ImageRef& /*image*/) {}
    // The clipboard's picture is to be opened: EditorKeys::openPicture().
    virtual void editorKeysPastePicture() {}
};

}  // namespace kalim
