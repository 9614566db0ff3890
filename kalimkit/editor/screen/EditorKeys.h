#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/editor/screen/EditorKeysDelegate.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

enum class PointerButton { Main, Middle, Other };

// What the keys, the wheel and the buttons of a desktop do in the editor, the same under every
// host. Points are the window's.
//
// Keys bear names such as "ctrl+shift+z", "escape", "enter", "space", "delete", "p", "1", "[" or
// "plus". While a text is edited it gets every key first, and letters and digits are its alone.
//
//     ctrl+z, ctrl+shift+z, ctrl+y     undo, redo
//     delete, backspace                deletes the selection
//     escape    ends the editing of a text, else deselects, else closes the panel, else asks to
//               close; leaves the crop editor, and answers a question so that nothing is lost
//     enter     also answers a question, so that nothing is lost as well; tab and the arrows choose
//               another answer first
//     enter, ctrl+s                    confirms, in the crop editor the crop
//     ctrl+c, ctrl+v                   copies the result, opens the clipboard's picture
//     p l a r e t m                    freehand, line, arrow, rectangle, ellipse, text, mosaic
//     1 to 5, [ and ]                  the colours; thinner, thicker
//     ctrl+0, ctrl+1                   shows the whole picture; a pixel of it on one of the screen
//     plus, =, -                       zooms in and out, with ctrl as well
//     space                            while held, the main button pans as the middle one does
class KALIM_API EditorKeys {
public:
    explicit EditorKeys(std::weak_ptr<TesselViewController> editor);
    ~EditorKeys();
    EditorKeys(const EditorKeys&) = delete;
    EditorKeys& operator=(const EditorKeys&) = delete;

    // ---- keys. Whether the key did something; if not, a host may leave it to others.
    bool press(std::string_view key, bool isRepeated = false);
    void release(std::string_view key);

    // ---- the pointer. True when the editor pans with it; a finger otherwise.
    bool pointerPressed(PointerButton button, gfx::Point place);
    bool pointerMoved(gfx::Point place);
    bool pointerReleased(PointerButton button);
    // A notch of a wheel, or a touchpad: enlarges by the factor about a place.
    void pointerZoomed(gfx::Point place, double factor);

    // ---- for hosts. What is chosen before the editor has appeared is lost.
    // A pen by its number, see EditorPen, for what is drawn next; deselects.
    void choosePen(unsigned pen);
    // Also for what is selected, as a line width in points; neither need be one of the pickers'.
    void chooseColor(const gfx::ColorRef& color);
    void chooseLineWidth(double width);
    // As the close button does: asks first when something was drawn.
    void askToClose();
    // Shows another picture, and asks first when that would lose work: something drawn, or a crop.
    // While the crop editor is open it is refused with an alert that says so; one that comes while
    // the user is still asked takes the place of the one before. Null is refused with an alert that
    // says that it cannot be opened.
    // `answer` hears once whether the picture has been opened.
    using OpeningAnswer = std::function<void(bool isOpened)>;
    void openPicture(const gfx::ImageRef& image, OpeningAnswer answer = {});
    // Tells the user why a picture cannot be opened.
    void refusePicture(const std::string& reason);
    void setDelegate(std::weak_ptr<EditorKeysDelegate> delegate) {
        _delegate = std::move(delegate);
    }

private:
    struct Command;
    static const Command commands[];

    ui::Window* window() const;
    bool pressInText(std::string_view key);
    bool pressInDialog(std::string_view key, bool isRepeated);
    bool pressInCrop(std::string_view key, bool isRepeated);

    // ---- commands; whether there was something to do
    bool undo();
    bool redo();
    bool deleteSelection();
    bool escape();
    bool confirm();
    bool copy();
    bool paste();
    bool holdSpace();
    bool zoomToFit();
    bool zoomToPixels();
    bool zoomIn();
    bool zoomOut();
    template <unsigned index>
    bool takeColor();
    bool thinner();
    bool thicker();
    // The one whose key it is.
    bool takePen(std::string_view key);

    // ---- another picture
    struct Offer {
        void end(bool isOpened) const;

        gfx::ImageRef image;
        OpeningAnswer answer;
    };
    void askToOpen();
    void decideOffer(bool isWanted);

    double lineWidth() const;
    MDrawView* canvasToZoom();
    bool isCanvasFree() const;
    gfx::Point inCanvas(gfx::Point place) const;
    void endZoom();

    // Held by the host as long as it is shown; weak, because a message of its may end that.
    std::weak_ptr<TesselViewController> _editor;
    std::weak_ptr<EditorKeysDelegate> _delegate;
    // The picture that the user is asked about; without one while nobody is.
    Offer _offer;
    // For a question that may outlive this object.
    std::shared_ptr<EditorKeys*> _self = std::make_shared<EditorKeys*>(this);
    bool _isSpaceHeld = false;
    // The button that pans, where it went down, and where the pointer is now.
    std::optional<PointerButton> _panButton;
    gfx::Point _panStart;
    gfx::Point _panEnd;
    // Of a zoom under way: since it began, the canvas's scale before it, and where it was last.
    double _zoom = 1;
    double _scaleBeforeZoom = 1;
    gfx::Point _zoomPlace;
    // The delayed call that ends the zoom; 0 without one.
    std::uint64_t _zoomEnd = 0;
};

}  // namespace kalim
