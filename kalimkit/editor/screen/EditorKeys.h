#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/canvas/CanvasKeys.h"
#include "kalimkit/editor/screen/EditorKeysDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/desk/KeyGroup.h"

namespace kalim {

namespace ui {
class Window;
}
class EditorRemote;
class TesselViewController;

// What the keys of a desktop do in the editor, the same under every host.
//
// Keys bear names such as "ctrl+shift+z", "escape", "enter", "space", "delete", "p", "1", "[" or
// "plus". While a text is edited it gets every key first, and letters and digits are its alone.
//
//     ctrl+z, ctrl+shift+z, ctrl+y     undo, redo; ctrl+z first takes back what is being drawn or
//                                      dragged, as escape does
//     delete, backspace                deletes the selection
//     escape    takes back what is being drawn or dragged, else ends the editing of a text, else
//               deselects, else closes the panel, else asks to close; leaves the crop editor, and
//               answers a question so that nothing is lost. Where the editor has a shell for wide
//               screens it takes the pen that selects before it asks, and closes nothing unasked
//     enter     ends the editing of a text where the editor has a shell for wide screens, in which
//               shift+enter begins a line, and with ctrl everywhere; else ends a shape that is made
//               point by point, edits a text that is selected, or confirms; also answers a
//               question, so that nothing is lost as well; tab and the arrows choose another answer
//               first
//     ctrl+s                           confirms, in the crop editor the crop, as enter does
//     ctrl+shift+s                     saves a document, in the crop editor as well
//     ctrl+o                           has a picture or a document chosen
//     ctrl+c, ctrl+v                   copies what is selected, or else the result; pastes the
//                                      clipboard's shapes, or else opens its picture
//     ctrl+x, ctrl+d                   cuts, duplicates
//     ctrl+a                           selects everything
//     arrows                           move the selection by one point, with shift by ten; with alt
//                                      they resize it so, from its corner at the bottom right
//     tab, shift+tab                   select the next shape, or the one before; past the last they
//                                      go to the bars of wide screens
//     r, shift+r                       turn what is selected by 15 degrees, and back
//     n                                makes the shape of the pen in hand in the middle of what is
//                                      seen; the numbers' pen has shift+n
//     ctrl+], ctrl+[                   bring forward, send backward; with shift all the way
//     ctrl+g, ctrl+shift+g             group, ungroup
//     ctrl+l, ctrl+shift+l             lock, or unlock what is selected; unlock everything
//     alt+a h d, alt+w v s             align left, centre, right; top, middle, bottom
//     alt+shift+h, alt+shift+v         distribute horizontally, vertically
//     p l a r e t m                    freehand, line, arrow, rectangle, ellipse, text, mosaic
//     v                                no pen: a drag moves what lies there, or spans a rectangle
//                                      that selects what it meets
//     1 to 5, [ and ]                  the colours; thinner, thicker
//     ctrl+0, ctrl+1                   shows the whole picture; a pixel of it on one of the screen
//     plus, =, -                       zooms in and out, with ctrl as well
//     space                            while held, the main button pans as the middle one does
//     ?, f1                            shows all keys
//     f11                              fills the screen, or no longer
class KALIM_API EditorKeys {
public:
    // The pointer and the remote are those of the same editor; both must outlive this object.
    EditorKeys(std::weak_ptr<TesselViewController> editor, CanvasPointer& pointer,
               EditorRemote& remote);
    EditorKeys(const EditorKeys&) = delete;
    EditorKeys& operator=(const EditorKeys&) = delete;

    // Whether the key did something; if not, a host may leave it to others.
    bool press(std::string_view key, bool isRepeated = false);
    void release(std::string_view key);

    void setDelegate(std::weak_ptr<EditorKeysDelegate> delegate) {
        _delegate = std::move(delegate);
    }
    // All keys with what they do, in the language of the current environment, those of the pens
    // with what these are called.
    static std::vector<ui::KeyGroup> list();
    // What is told of a key there, before it is brought into that language; empty for others, and
    // for those of pens.
    static std::string_view textOf(std::string_view key);
    // Called by the keys that show that list.
    void setOverviewHandler(std::function<void()> handler) {
        _overviewHandler = std::move(handler);
    }

    // ---- what buttons share with the keys. Whether the host does it;
    bool offers(EditorAction action) const;
    // the result goes to the clipboard, to where it belongs, or to where the user wants it, and the
    // work goes on. Each answers whether there was something for a host to take.
    bool copyPicture();
    bool savePicture();
    bool savePictureAs();

private:
    struct Command;
    static const Command commands[];

    static std::span<const Command> allCommands();

    ui::Window* window() const;
    static bool isForReaders(bool (EditorKeys::*run)());
    bool pressInDialog(std::string_view key, bool isRepeated);
    bool pressInCrop(std::string_view key, bool isRepeated);

    // ---- commands; whether there was something to do
    bool undo();
    bool redo();
    bool escape();
    bool putPenDown();
    bool confirm();
    bool enter();
    bool copy();
    bool paste();
    bool saveDocument();
    bool openFile();
    bool showKeys();
    bool toggleFullScreen();
    template <unsigned index>
    bool takeColor();
    bool thinner();
    bool thicker();
    // The one whose key it is.
    bool takePen(std::string_view key);

    using PictureTaker = void (EditorKeysDelegate::*)(const gfx::ImageRef& image);
    bool handOver(PictureTaker taker);
    double lineWidth() const;

    // Held by the host as long as it is shown; weak, because a message of its may end that.
    std::weak_ptr<TesselViewController> _editor;
    std::weak_ptr<EditorKeysDelegate> _delegate;
    std::function<void()> _overviewHandler;
    // What is not of the editor's own.
    CanvasKeys _canvasKeys;
    EditorRemote& _remote;
};

}  // namespace kalim
