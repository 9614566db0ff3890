#include <SDL.h>

#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/host/sdl/SdlHands.h"
#include "kalimkit/host/sdl/SdlKeyNames.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim {

namespace {

std::int64_t fingerId(const SDL_TouchFingerEvent& finger) {
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(finger.touchId) << 32U) ^
                                     static_cast<std::uint64_t>(finger.fingerId)) &
           INT64_MAX;
}

PointerButton buttonOf(std::uint8_t button) {
    if (button == SDL_BUTTON_LEFT) return PointerButton::Main;
    return button == SDL_BUTTON_MIDDLE ? PointerButton::Middle : PointerButton::Other;
}

// The byte at which so many characters of a text are over.
std::size_t byteAfter(std::string_view text, std::int32_t characters) {
    std::size_t byte = 0;
    while (byte < text.size() && characters > 0) {
        do
            ++byte;
        while (byte < text.size() && (static_cast<unsigned char>(text[byte]) & 0xC0U) == 0x80U);
        --characters;
    }
    return byte;
}

}  // namespace

// Of when it happened: a gesture's speed must not hang on how busy the process was.
double SdlWindow::timeOf(const SDL_Event& event) const {
    const std::uint64_t now = SDL_GetTicks64();
    const auto age = static_cast<std::uint32_t>(now) - event.common.timestamp;
    const std::uint64_t elapsed = now - _start;
    // An event that comes from elsewhere may bear no time at all.
    return static_cast<double>(age > elapsed ? elapsed : elapsed - age) / 1000;
}

bool SdlWindow::isMine(const SDL_Event& event) const {
    switch (event.type) {
        case SDL_WINDOWEVENT:
            return event.window.windowID == _id;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return event.key.windowID == _id;
        case SDL_TEXTINPUT:
        case SDL_TEXTEDITING:
        case SDL_TEXTEDITING_EXT:
            return event.text.windowID == _id;
        case SDL_MOUSEMOTION:
            return event.motion.windowID == _id && event.motion.which != SDL_TOUCH_MOUSEID;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return event.button.windowID == _id && event.button.which != SDL_TOUCH_MOUSEID;
        case SDL_MOUSEWHEEL:
            return event.wheel.windowID == _id;
        case SDL_FINGERDOWN:
        case SDL_FINGERMOTION:
        case SDL_FINGERUP:
            return event.tfinger.windowID == _id || event.tfinger.windowID == 0;
        default:
            return true;
    }
}

void SdlWindow::handle(const SDL_Event& event) {
    if (!isMine(event)) return;
    _environment->runLoop().advanceTo(timeOf(event));
    switch (event.type) {
        case SDL_QUIT:
            stop();
            break;
        case SDL_WINDOWEVENT:
            handleWindow(event);
            break;
        case SDL_FINGERDOWN:
        case SDL_FINGERMOTION:
        case SDL_FINGERUP:
            handleFinger(event);
            break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEMOTION:
        case SDL_MOUSEBUTTONUP:
            handleMouse(event);
            break;
        case SDL_MOUSEWHEEL:
            handleWheel(event);
            break;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            handleKey(event);
            break;
        case SDL_TEXTINPUT:
        case SDL_TEXTEDITING:
        case SDL_TEXTEDITING_EXT:
            handleText(event);
            break;
        case SDL_DROPFILE:
            if (_hands) _hands->openFile(event.drop.file);
            SDL_free(event.drop.file);
            break;
        default:
            break;
    }
    endComposition();
    // What is typed next may come before the next frame.
    _seat.followCaret();
}

void SdlWindow::handleWindow(const SDL_Event& event) {
    switch (event.window.event) {
        case SDL_WINDOWEVENT_SIZE_CHANGED:
            takeSize();
            break;
        case SDL_WINDOWEVENT_EXPOSED:
            if (const auto surface = window().surface()) {
                const gfx::PixelSize size = surface->pixelSize();
                bringToScreen(
                    {{{}, {static_cast<double>(size.width), static_cast<double>(size.height)}}});
            }
            break;
        case SDL_WINDOWEVENT_LEAVE:
            _seat.mouseLeft();
            break;
        case SDL_WINDOWEVENT_FOCUS_LOST:
            _isSpaceHeld = false;
            takeModifiers(KMOD_NONE);
            break;
        case SDL_WINDOWEVENT_CLOSE:
            if (EditorRemote* const remote = _seat.remote()) {
                remote->askToClose();
            } else {
                stop();
            }
            break;
        default:
            break;
    }
}

// ---- pointing

gfx::Point SdlWindow::pointAt(double x, double y) const {
    const double scale = _environment->screen().scale;
    return {x / scale, y / scale};
}

void SdlWindow::handleFinger(const SDL_Event& event) {
    const SDL_TouchFingerEvent& touch = event.tfinger;
    // A touchpad's fingers are not on the screen; they arrive as a wheel.
    if (SDL_GetTouchDeviceType(touch.touchId) == SDL_TOUCH_DEVICE_INDIRECT_ABSOLUTE ||
        SDL_GetTouchDeviceType(touch.touchId) == SDL_TOUCH_DEVICE_INDIRECT_RELATIVE) {
        return;
    }
    const gfx::Size size = window().size();
    const ui::Finger finger{fingerId(touch), {touch.x * size.width, touch.y * size.height}, {}};
    if (touch.type == SDL_FINGERDOWN) {
        window().fingersBegan({finger});
    } else if (touch.type == SDL_FINGERMOTION) {
        window().fingersMoved({finger});
    } else {
        window().fingersEnded({finger});
    }
}

// Keys, and a button that is let go in another window, tell of what is held.
void SdlWindow::takeModifiers(std::uint16_t held) {
    _seat.setModifiers({.shift = (held & KMOD_SHIFT) != 0,
                        .alt = (held & KMOD_ALT) != 0,
                        .control = (held & (KMOD_CTRL | KMOD_GUI)) != 0,
                        .space = _isSpaceHeld});
}

void SdlWindow::handleMouse(const SDL_Event& event) {
    takeModifiers(static_cast<std::uint16_t>(SDL_GetModState()));
    const auto pen = _pens ? _pens->contact() : std::nullopt;
    _seat.setPointerContact(pen.value_or(EditorSeat::mouseContact));
    if (event.type == SDL_MOUSEMOTION) {
        _seat.mouseMoved(pointAt(event.motion.x, event.motion.y));
        return;
    }
    const gfx::Point place = pointAt(event.button.x, event.button.y);
    const PointerButton button = buttonOf(event.button.button);
    if (event.type == SDL_MOUSEBUTTONDOWN) {
        _seat.mousePressed(button, place);
    } else {
        _seat.mouseReleased(button, place);
    }
}

void SdlWindow::handleWheel(const SDL_Event& event) {
    takeModifiers(static_cast<std::uint16_t>(SDL_GetModState()));
    const gfx::Point place = pointAt(event.wheel.mouseX, event.wheel.mouseY);
    const double sideways = event.wheel.preciseX;
    const double upwards = event.wheel.preciseY;
    // A touchpad tells parts of notches, and of both directions.
    const bool isSmooth = sideways != 0 || upwards != std::round(upwards);
    const bool zooms = (SDL_GetModState() & KMOD_CTRL) != 0;
    if (isSmooth && !zooms) {
        constexpr double notch = 48;
        _seat.scrolled(place, {-sideways * notch, upwards * notch});
    } else {
        _seat.wheelTurned(place, upwards);
    }
}

// ---- typing

void SdlWindow::handleKey(const SDL_Event& event) {
    const bool isPressed = event.type == SDL_KEYDOWN;
    if (event.key.keysym.sym == SDLK_SPACE) _isSpaceHeld = isPressed && !_seat.focusedText();
    takeModifiers(event.key.keysym.mod);
    const std::string name = nameOfKey(event.key.keysym);
    if (name.empty()) return;
    if (isPressed) {
        _settled.clear();
        _seat.pressKey(name, event.key.repeat != 0);
    } else {
        _seat.releaseKey(name);
    }
}

void SdlWindow::handleText(const SDL_Event& event) {
    switch (event.type) {
        case SDL_TEXTEDITING:
            return handleComposition(event.edit.text, event.edit.start, event.edit.length);
        case SDL_TEXTEDITING_EXT:
            handleComposition(event.editExt.text, event.editExt.start, event.editExt.length);
            return SDL_free(event.editExt.text);
        default:
            break;
    }
    _isComposing = false;
    if (std::exchange(_settled, {}) != event.text.text) _seat.insertText(event.text.text);
}

// Counted in characters.
void SdlWindow::handleComposition(std::string_view text, int start, int length) {
    const auto focused = _seat.focusedText();
    if (!text.empty()) _settled.clear();
    _isComposing = focused && !text.empty();
    if (!focused || (text.empty() && !focused->markedRange())) return;
    focused->setMarkedText(text, {byteAfter(text, start), byteAfter(text, start + length)});
    const auto marked = focused->markedRange();
    _composed = marked ? focused->text().substr(marked->begin, marked->length()) : std::string();
}

// A touch beside what is composed, or a key, has ended the composition: the input method has to
// hear of it, or what it gives next would stand there twice.
void SdlWindow::endComposition() {
    if (!_isComposing) return;
    const auto focused = _seat.focusedText();
    if (focused && focused->markedRange()) return;
    _isComposing = false;
    _settled = std::exchange(_composed, {});
    if (!focused) return;
    SDL_StopTextInput();
    SDL_StartTextInput();
}

}  // namespace kalim
