#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/host/files/PictureOrigins.h"
#include "kalimkit/host/sdl/Pens.h"
#include "kalimkit/host/sdl/SdlEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/host/seat/MemoryGuard.h"

struct SDL_Window;
union SDL_Event;

namespace kalim {

class SdlCursors;

// The seat of an editor, or of a canvas alone, in an SDL window that the host has made. While it
// lives, its environment is the current one; the one before comes back with its end. A host without
// a loop of its own calls run(); one that has one hands its events to handle(), calls update()
// after them, and waits no longer than waitTime().
class KALIM_API SdlWindow {
public:
    // Starts SDL's video with what such windows want of it; instead of SDL_Init. Nothing on
    // success, else a sentence that says why not. SDL_Quit() ends it.
    static std::optional<std::string> startVideo();

    // The SDL window must outlive this object, and nobody else draws in it. The environment may be
    // one that the host has derived; its screen becomes the window.
    SdlWindow(::SDL_Window* window, std::shared_ptr<SdlEnvironment> environment);
    // With an environment of its own; pixels per point.
    SdlWindow(::SDL_Window* window, double scale);
    ~SdlWindow();
    SdlWindow(const SdlWindow&) = delete;
    SdlWindow& operator=(const SdlWindow&) = delete;

    SdlEnvironment& environment() { return *_environment; }
    EditorSeat& seat() { return _seat; }
    ui::Window& window() { return _seat.window(); }

    // ---- the editor, or a canvas
    // Makes the editor the window's screen and connects the keyboard, the pointer, the clipboard
    // and dropped files with it. Null takes it away. The host does not do so from within a message
    // of the editor's; stop() may be called from there.
    void present(std::shared_ptr<TesselViewController> editor);
    // The same of a canvas alone, in a screen of the host's; see EditorSeat::presentCanvas. The
    // window's close button stops the loop then, and files that are dropped are the host's.
    void presentCanvas(std::shared_ptr<ui::ViewController> screen,
                       const std::shared_ptr<MDrawView>& canvas);
    // Told when a picture that the user has pasted, dropped or chosen has taken the place of the
    // one that was there: its file's path, empty for the clipboard's.
    void setPictureTaken(std::function<void(const std::string& path)> pictureTaken) {
        _pictureTaken = std::move(pictureTaken);
    }
    // The same of a document. A host that leaves it out has the above told of the file.
    void setDocumentTaken(std::function<void(const std::string& path)> documentTaken) {
        _documentTaken = std::move(documentTaken);
    }
    // Saves what is in the editor as a document when the user asks for that; without one the key
    // does nothing.
    void setDocumentSaver(std::function<void()> saver) { _documentSaver = std::move(saver); }
    // Writes the result, and the work goes on: to a place that the user has chosen, or for an empty
    // path to where it belongs, which only a settled saver is asked for. Without one there are no
    // buttons for it.
    using PictureSaver = std::function<void(const gfx::ImageRef& image, const std::string& path)>;
    void setPictureSaver(PictureSaver saver, bool isSettled = true) {
        _pictureSaver = std::move(saver);
        _isSaverSettled = isSettled;
    }
    // Puts a picture on the clipboard. False where that cannot be, which an alert has told then.
    bool copyPicture(const gfx::ImageRef& image);
    // Told when the user has had the result copied.
    void setPictureCopied(std::function<void()> copied) { _pictureCopied = std::move(copied); }
    // Take Enter where it would send, and Escape where it would close: whether they did.
    void setEnterTaker(std::function<bool()> taker) { _enterTaker = std::move(taker); }
    void setEscapeTaker(std::function<bool()> taker) { _escapeTaker = std::move(taker); }
    // Which files the editor's pictures came from. A host makes the first one with it to have its
    // bytes in documents.
    PictureOrigins& origins() { return _origins; }
    // Asked before such a picture is offered to the user: why the host could not do with one of
    // this size, which is told in an alert instead; nothing where it can.
    using PictureRefusal = std::function<std::optional<std::string>(gfx::PixelSize size)>;
    void setPictureRefusal(PictureRefusal refusal) { _pictureRefusal = std::move(refusal); }

    // What knows of pens; at first what the system has, see Pens. Null: they are mice.
    void setPens(std::unique_ptr<Pens> pens) { _pens = std::move(pens); }

    // ---- the loop
    // Handles what comes, and sleeps while nothing does, until stop() is called or, with `seconds`,
    // that time has passed. A signal that ends the process stops it, too, and so does the window's
    // close button as long as there is no editor to ask.
    void run(std::optional<double> seconds = std::nullopt);
    void stop() { _isStopped = true; }
    bool isStopped() const { return _isStopped; }
    // Fills the screen, or no longer; F11 does so as well.
    void setFullScreen(bool isFull);
    bool isFullScreen() const;
    // Events of other windows are left alone.
    void handle(const SDL_Event& event);
    // Does the work that is due and shows what has changed.
    void update();
    // Milliseconds until something is due; negative when nothing is.
    int waitTime() const;

private:
    class Hands;

    // ---- events (SdlWindowEvents.cpp)
    double timeOf(const SDL_Event& event) const;
    bool isMine(const SDL_Event& event) const;
    void handleWindow(const SDL_Event& event);
    void handleFinger(const SDL_Event& event);
    void handleMouse(const SDL_Event& event);
    void handleWheel(const SDL_Event& event);
    void handleKey(const SDL_Event& event);
    void handleText(const SDL_Event& event);
    void handleComposition(std::string_view text, int start, int length);
    void endComposition();
    void takeModifiers(std::uint16_t held);
    gfx::Point pointAt(double x, double y) const;

    gfx::Size takeScreen();
    void takeSize();
    void placeCaret(bool isTyping, const gfx::Rect& caret) const;
    void bringToScreen(const std::vector<gfx::Rect>& rects);

    ::SDL_Window* _sdl;
    std::uint32_t _id;
    std::shared_ptr<SdlEnvironment> _environment;
    EditorSeat _seat;
    // SDL's clock when the run loop's began, milliseconds.
    std::uint64_t _start;
    bool _isStopped = false;
    MemoryGuard _memory;
    std::function<void(const std::string& path)> _pictureTaken;
    std::function<void(const std::string& path)> _documentTaken;
    std::function<void()> _documentSaver;
    PictureSaver _pictureSaver;
    bool _isSaverSettled = false;
    std::function<void()> _pictureCopied;
    std::function<bool()> _enterTaker;
    std::function<bool()> _escapeTaker;
    PictureRefusal _pictureRefusal;
    PictureOrigins _origins;
    std::shared_ptr<Hands> _hands;
    std::unique_ptr<SdlCursors> _cursors;
    std::unique_ptr<Pens> _pens;
    // The input method has something under way, which reads so.
    bool _isComposing = false;
    std::string _composed;
    // What stayed in the text of a composition that was ended here; some input methods give it once
    // more when they hear of that.
    std::string _settled;
    // No modifier to SDL, but one of the editor's.
    bool _isSpaceHeld = false;
};

}  // namespace kalim
