#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/canvas/CanvasKeys.h"
#include "kalimkit/canvas/CanvasPointer.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/text/TextRange.h"
#include "kalimkit/host/seat/EnvironmentScope.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/AccessibilityTree.h"
#include "kalimkit/ui/window/ViewController.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

enum class SeatLayout { Phone, Desk, Auto, None };

// What every host needs around the editor: a window in the host's environment, the editor on it,
// and the ways in and out: keys, pointer, text, caret, what was drawn, what is told to assistive
// technologies. While it lives the host's environment is the current one; the one before comes back
// with its end. The host moves the run loop's clock and shows what show() has drawn.
//
// Places are window points. The seat, the window and the editor are not taken away from within a
// message of the editor's.
class KALIM_API EditorSeat {
public:
    // The window's size is points.
    EditorSeat(std::shared_ptr<ui::Environment> environment, gfx::Size size);
    ~EditorSeat();
    EditorSeat(const EditorSeat&) = delete;
    EditorSeat& operator=(const EditorSeat&) = delete;

    ui::Window& window() { return _window; }
    ui::AccessibilityTree& accessibility() { return _accessibility; }

    // ---- the editor
    // What hosts may leave to their user.
    struct Choices {
        // What is sent has a pixel for each of the picture's, instead of the screen's.
        bool isPictureSize = true;
        // What is drawn beyond the picture's edge enlarges what is sent, instead of being cut.
        bool grows = false;
    };
    // An editor as people at a desktop or a page have it: forgiving, with lines that are as wide in
    // every picture, the picture between the bars, and a zoom to eight pixels for one. The bare
    // class has none of these.
    static std::shared_ptr<TesselViewController> makeEditor(
        const gfx::ImageRef& image, std::weak_ptr<TesselViewControllerDelegate> delegate,
        const Choices& choices);
    // Makes it the window's screen, in the place of the one before, and connects the keys and the
    // pointer with it. Null takes it away.
    void present(std::shared_ptr<TesselViewController> editor,
                 std::weak_ptr<EditorKeysDelegate> delegate = {});
    const std::shared_ptr<TesselViewController>& editor() const { return _editor; }
    // The same of a canvas alone, without the editor around it: it has the pointer, and of the keys
    // those of CanvasKeys. It lies in the screen's view, and the screen gives it its place there.
    void presentCanvas(std::shared_ptr<ui::ViewController> screen,
                       const std::shared_ptr<MDrawView>& canvas);
    // What people may choose from, in the order in which both shells show it: pens by their
    // identifiers, such as "arrow" and "crop"; colours; widths, points. An empty list takes the
    // choice back. Answers with what is wrong with a pen, and nothing changes then. It holds for
    // the present editor and those to come.
    std::optional<std::string> setPens(const std::vector<std::string>& identifiers);
    void setColors(std::vector<gfx::ColorRef> colors);
    void setWidths(const std::vector<double>& widths);
    // A button of the host's own in the desk's bars; see HostButton. It may take itself away.
    void addButton(HostButton button);
    void removeButton(std::string_view identifier);
    // Room in the upper bar of either shell for what the host lays over the window there: so many
    // points wide, or less where there is less; 0 for none. For the present editor and those to
    // come.
    void setHostRoom(double width);
    // Where it is now; empty while there are no bars, something is asked or cropped, or another
    // thing lies there.
    gfx::Rect hostRoom() const;
    // Of texts that stand out from the bar there.
    gfx::ColorRef hostRoomTextColor() const;
    // Nothing can be changed, and nothing is shown but the zoom; for the present editor and those
    // to come.
    void setReadOnly(bool isReadOnly);
    // Which bars the editor has: a phone's, as at first, those of wide screens, or the ones that
    // suit the window: it is wider than 700 points and than it is high, or wide enough for a
    // pointer that has hovered over it; or none, where the host has bars of its own. They may
    // change at any time, and nothing is lost.
    void setLayout(SeatLayout layout);
    SeatLayout layout() const { return _layout; }
    // Whether the layout asks for the desk now.
    bool wantsDesk() const { return wantsDesk(_window.size()); }
    // For hosts whose code of the desk comes later: asked before one is made; false leaves the
    // phone's bars until setLayout() or another size asks again.
    using DeskGate = std::function<bool()>;
    void setDeskGate(DeskGate gate) { _deskGate = std::move(gate); }
    // The canvas and its pointer, null without any; the others are null without an editor.
    MDrawView* canvas() const;
    CanvasPointer* pointer() const { return _pointer.get(); }
    EditorKeys* keys() const { return _keys.get(); }
    EditorRemote* remote() const { return _remote.get(); }

    // ---- the mouse, which is a finger unless the canvas pans with it. Its moves are reported
    // whether a button is pressed or not.
    void mousePressed(PointerButton button, gfx::Point place);
    void mouseMoved(gfx::Point place);
    void mouseReleased(PointerButton button, gfx::Point place);
    // What moves it, where that is no mouse but a pen, for what is reported next.
    static constexpr ui::TouchContact mouseContact{.kind = ui::TouchKind::Mouse};
    void setPointerContact(const ui::TouchContact& contact) { _contact = contact; }
    // It has left the window: nothing is hovered over any longer.
    void mouseLeft();
    // Hears what the pointer is to look like from now on.
    void setCursorHandler(ui::Hover::CursorHandler handler) {
        _window.setCursorHandler(std::move(handler));
    }
    // Notches of the wheel, or parts of them; towards the user they are negative.
    // With shift held it moves what is there sideways.
    void wheelTurned(gfx::Point place, double notches);
    // A touchpad, or a wheel that can be tilted, moves what is there by so many points, content to
    // the right and downwards being positive.
    void scrolled(gfx::Point place, gfx::Point distance);

    // ---- keys, by the names of EditorKeys. Without a canvas they are the focused text's. Whether
    // the key did something.
    bool pressKey(std::string_view name, bool isRepeated = false);
    void releaseKey(std::string_view name);
    // Whether a pen that has been used leaves fingers nothing but zooming and moving; on at first,
    // and kept as the user's own choice, see MDrawView::penOnlySetting.
    bool isPenOnly() const;
    void setPenOnly(bool isPenOnly);
    // Those that are held, at every change of them.
    void setModifiers(ui::Modifiers modifiers) { _window.setModifiers(modifiers); }

    // ---- text; offsets are bytes of UTF-8. False, and nothing happens, while none has the focus.
    std::shared_ptr<ui::TextView> focusedText() const { return ui::TextView::focusedIn(_window); }
    bool insertText(std::string_view text);
    // What an input method composes, and what is selected of it; empty ends the composition.
    bool composeText(std::string_view text, gfx::TextRange selection);
    bool selectText(gfx::TextRange range);
    // Puts a text in the place of some bytes.
    bool replaceText(gfx::TextRange range, std::string_view text);
    // Hears of the focused text, null for none, and of its caret when either is another than
    // before: at every show() and followCaret(). A caret also moves with its view, of which nobody
    // tells.
    using CaretHandler = std::function<void(ui::TextView* focused, const gfx::Rect& caret)>;
    void setCaretHandler(CaretHandler handler) { _caretHandler = std::move(handler); }
    void followCaret();

    // ---- display
    // Does the work that is due and draws. Answers with all the rectangles, in pixels of the
    // window's surface, that were drawn since it was asked last.
    std::vector<gfx::Rect> show();
    // Has everything drawn anew, where the host has lost it.
    void redraw();
    // The user's system has become dark or light, or asks for more contrast or less.
    void setAppearance(const ui::Appearance& appearance);

private:
    bool wantsDesk(gfx::Size size) const;
    SeatLayout layoutFor(gfx::Size size) const;
    std::shared_ptr<EditorShell> makeShell();
    void chooseShell(gfx::Size size);
    void showOffer();
    void letGo();

    std::shared_ptr<ui::Environment> _environment;
    // Comes before the window and goes after it, as views ask for the current environment.
    EnvironmentScope _scope;
    ui::Window _window;
    ui::AccessibilityTree _accessibility{_window};
    std::shared_ptr<TesselViewController> _editor;
    // The one that is presented alone.
    std::weak_ptr<MDrawView> _canvas;
    std::unique_ptr<CanvasPointer> _pointer;
    // Of a canvas alone.
    std::unique_ptr<CanvasKeys> _canvasKeys;
    std::unique_ptr<EditorRemote> _remote;
    std::unique_ptr<EditorKeys> _keys;
    SeatLayout _layout = SeatLayout::Phone;
    // What the editor shows of it.
    SeatLayout _shown = SeatLayout::Phone;
    DeskGate _deskGate;
    bool _hasHovered = false;
    EditorOffer _offer;
    bool _hasOffer = false;
    double _hostRoom = 0;
    bool _isReadOnly = false;
    // The mouse is a finger on the window.
    bool _isMouseDown = false;
    ui::TouchContact _contact = mouseContact;
    CaretHandler _caretHandler;
    // What the handler was told last.
    bool _isTyping = false;
    gfx::Rect _caret;
};

}  // namespace kalim
