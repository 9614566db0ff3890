#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim {

class EditorSeat;
namespace gfx {
class Bitmap;
}

// The editor of a picture in a window of the host's own. The host tells it what time it is and what
// the user does, and brings to the screen what it has drawn in memory:
//
//     tick(now)    before each event, and when nextTick() has come
//     an event     pointerPressed() ... keyPressed()
//     draw()       after both, and the changed rectangles of its frame to the screen
//
// It needs no library of windows and knows none. Several may live at a time, all on one thread. A
// place is in points from the top left corner of the editor, a point being `scale` pixels.
class KALIM_API Editor {
public:
    // ---- pictures
    // The bytes of a pixel in memory, 8 bits each, in sRGB. Bgra is premultiplied by alpha, as
    // Cairo's ARGB32, Windows' and X's images are on usual machines; Rgba is not, as files are.
    enum class Pixels { Bgra, Rgba };

    // A picture that never changes, upright; copies share it. None when it is default-made or what
    // it was to be made of is no picture.
    class KALIM_API Picture {
    public:
        Picture() = default;
        // Of a JPEG, PNG or WebP file, and of its bytes. For none `error`, if not null, is a
        // sentence that says why.
        static Picture read(const std::string& path, std::string* error = nullptr);
        static Picture decode(const void* bytes, std::size_t count, std::string* error = nullptr);
        // Copies the pixels; `stride` bytes from one row to the next. None for sides below one.
        static Picture copy(const std::uint8_t* pixels, int width, int height, std::size_t stride,
                            Pixels kind);

        explicit operator bool() const { return _bitmap != nullptr; }
        // Both are pixels; 0 stands for none.
        int width() const;
        int height() const;
        // Bgra, rows packed; for as long as a copy of the picture lives. Null for none.
        const std::uint8_t* pixels() const;
        // A whole file, empty for none. The quality is 1 to 100.
        std::vector<std::uint8_t> png() const;
        std::vector<std::uint8_t> jpeg(int quality = 90) const;

    private:
        friend class Editor;
        std::shared_ptr<const gfx::Bitmap> _bitmap;
    };

    // ---- making
    struct Settings {
        // So many pixels make a point.
        double scale = 1;
        // What the texts are in, such as "zh-CN" or "de"; languages() lists what there is, and all
        // others are English. Empty asks the environment's locale, whether setlocale() was called
        // or not.
        std::string language;
        // Languages of the host's own, or other texts for those there are: catalogues by their
        // languages, see docs/embedding.md. One that badTexts() finds
        // fault with is left out.
        std::map<std::string, std::string> texts;
        // What is handed over has every pixel of the picture, instead of the screen's.
        bool isPictureSize = true;
        // What is drawn beyond the picture's edge enlarges what is handed over, and is cut there
        // otherwise.
        bool grows = false;
        // Rings about the pen button show a newcomer where to begin, until that is first tapped.
        bool showsHint = false;
    };
    // The languages that there are texts in.
    static std::vector<std::string> languages();
    // Nothing for a catalogue that is one; else what is wrong with it, a sentence.
    static std::optional<std::string> badTexts(std::string_view language, std::string_view json);
    // The size in points. With no picture there is one to draw on after openPicture().
    Editor(Picture picture, double width, double height, const Settings& settings);
    Editor(Picture picture, double width, double height);
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    // ---- what it tells. Called at the end of the call that has brought it about; the receiver may
    // call everything and destroy the editor. After either of the first two a host usually takes
    // the editor away; while it does not, the user goes on.
    // The user sends the picture with all that is drawn; none where memory did not suffice for it.
    void onFinish(std::function<void(const Picture& picture)> told);
    // The user closes the editor, and what is drawn is to be lost.
    void onClose(std::function<void()> told);
    // ctrl+c and ctrl+v: the picture is to go to the clipboard, and the clipboard's to
    // openPicture().
    void onCopy(std::function<void(const Picture& picture)> told);
    void onPaste(std::function<void()> told);
    // Where copied text goes and comes from, UTF-8; the editor's own memory at first. Called at
    // once, and may not call the editor.
    void setClipboard(std::function<void(const std::string& text)> put,
                      std::function<std::string()> get);

    // What a screen reader is to say of what a key has just done, in the editor's language.
    void onAnnounced(std::function<void(const std::string& text)> told);

    // ---- the mouse, or whatever moves a pointer. The middle button pans, others do nothing.
    enum class Button { Main, Middle, Other };
    void pointerPressed(double x, double y, Button button = Button::Main);
    // It comes also between a press and its release outside of the editor.
    void pointerMoved(double x, double y);
    // It hovers over the editor no longer.
    void pointerLeft();
    void pointerReleased(double x, double y, Button button = Button::Main);
    // Zooms about the place, in notches of a wheel or parts of them: in, or out where negative.
    void wheelTurned(double x, double y, double notches);

    // ---- fingers and pens, each with a number from 0 on that is its own while it is down
    struct Contact {
        bool isPen = false;
        // How wide the touched area is, points: a palm is wide, and does nothing. 0 for unknown.
        double size = 0;
        // From 0 to 1; nothing where it is not measured.
        std::optional<double> pressure = std::nullopt;
        // How far a pen leans to the right and towards the user, degrees from -90 to 90.
        double tiltX = 0;
        double tiltY = 0;
    };
    void touchBegan(std::int64_t finger, double x, double y, const Contact& contact);
    void touchBegan(std::int64_t finger, double x, double y);
    void touchMoved(std::int64_t finger, double x, double y, const Contact& contact);
    void touchMoved(std::int64_t finger, double x, double y);
    void touchEnded(std::int64_t finger, double x, double y, const Contact& contact);
    void touchEnded(std::int64_t finger, double x, double y);
    // The system has taken the finger: what it has begun is undone.
    void touchCancelled(std::int64_t finger);

    // ---- keys and text
    // A key by its name, "ctrl+shift+z": any of ctrl, alt and shift, in this order, before a letter
    // in lower case, a digit, "[", "]", "=", "-", "plus", "enter", "escape", "tab", "space",
    // "backspace", "delete", "left", "right", "up", "down", "home" or "end"; all others do nothing.
    // Whether the key did something; if not, it is the host's. Its text goes to textTyped() in
    // either case. docs/window.md lists what they do.
    bool keyPressed(std::string_view name, bool isRepeated = false);
    // Only the space is waited for; what of ctrl, alt and shift is still held does not matter.
    void keyReleased(std::string_view name);
    // What the keys have typed, UTF-8, after keyPressed() of them; control characters are left out,
    // as these keys have names. Does nothing unless a text is edited: while caret() is there.
    void textTyped(std::string_view text);
    // What an input method composes and where in it, in bytes, the caret is; empty ends it.
    void textComposed(std::string_view text, std::size_t caret);
    struct Rect {
        double x = 0;
        double y = 0;
        double width = 0;
        double height = 0;
    };
    // Of the text that is edited, for an input method's window, in points; nothing while none is.
    std::optional<Rect> caret() const;

    // ---- for the host
    // In points, and pixels per point; nothing happens where both are as they were.
    void resize(double width, double height, double scale);
    // How much of the window's bottom an on-screen keyboard covers, points; 0 when it goes.
    void setKeyboardHeight(double height);
    // Asks the user, as the close button does, when something would be lost; then onClose().
    void close();
    // Whether something would be lost: it was drawn, or cut, since the host said that it has saved
    // what is there.
    bool hasWork() const;
    void noteSaved();
    // A TrueType or OpenType file, whole, that texts are set in from now on; those added before
    // come first, and what all of them lack comes from the system. Answers what is wrong with the
    // file, a sentence, and then nothing has changed.
    std::optional<std::string> addFont(std::vector<std::uint8_t> file);
    // Another picture in the place of the one there is, which asks the user when something would be
    // lost. The user is told that none cannot be opened.
    void openPicture(Picture picture);
    // What the user would send now, none as above. Ends the editing of a text.
    Picture picture();

    // ---- time
    // Seconds on a clock of the host's that never goes back. Does what is due; what the user does
    // next happens at this time.
    void tick(double now);
    // When it wants the next turn, on that clock; 0 before the first, and nothing while it waits
    // for the user alone.
    std::optional<double> nextTick() const;

    // ---- display
    struct PixelRect {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };
    // The editor as it is now, and what of it is not as it was in the frame before.
    struct Frame {
        // Bgra, opaque; the editor's, and as they are until its next call. Null when the editor
        // has no size, or memory does not suffice.
        const std::uint8_t* pixels = nullptr;
        int width = 0;
        int height = 0;
        // So many bytes lie from one row to the next.
        std::size_t stride = 0;
        std::vector<PixelRect> changed;
    };
    Frame draw();

    // ---- beyond this header
    // Work on the window, the controller and the canvas themselves, which are there in it alone.
    // The first tick() brings the editor up with its own pen, so a pen is chosen after that.
    void perform(const std::function<void(EditorSeat& seat)>& work);

private:
    class Life;
    std::shared_ptr<Life> _life;
};

}  // namespace kalim
