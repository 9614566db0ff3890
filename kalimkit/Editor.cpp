#include "kalimkit/Editor.h"

#include <chrono>
#include <cmath>
#include <deque>
#include <string>
#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/seat/CatalogueEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/host/seat/EnvironmentScope.h"
#include "kalimkit/host/seat/MemoryGuard.h"
#include "kalimkit/ui/loop/FlagScope.h"

namespace kalim {

namespace {

// What the host's program is to the editor.
class HostedEnvironment : public CatalogueEnvironment {
public:
    gfx::Device& device() override { return *_device; }
    double wallClock() const override {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        return std::chrono::duration<double>(now).count();
    }
    void setWindow(gfx::Size size, double scale) {
        const gfx::PixelSize pixels{static_cast<int>(std::lround(size.width * scale)),
                                    static_cast<int>(std::lround(size.height * scale))};
        setScreen({scale, pixels, false});
    }
    std::string clipboardText() override { return _getText ? _getText() : _text; }
    void setClipboardText(const std::string& text) override {
        _putText ? _putText(text) : void(_text = text);
    }
    void announce(const std::string& text) override {
        if (announced) announced(text);
    }
    void setClipboard(std::function<void(const std::string&)> put,
                      std::function<std::string()> get) {
        _putText = std::move(put);
        _getText = std::move(get);
    }

    std::function<void(const std::string&)> announced;

private:
    std::shared_ptr<gfx::Device> _device = gfx::CairoDevice::make();
    std::function<void(const std::string&)> _putText;
    std::function<std::string()> _getText;
    // What was copied, where the host has no clipboard.
    std::string _text;
};

PointerButton buttonOf(Editor::Button button) {
    if (button == Editor::Button::Main) return PointerButton::Main;
    return button == Editor::Button::Middle ? PointerButton::Middle : PointerButton::Other;
}

ui::TouchContact contactOf(const Editor::Contact& contact) {
    return {.kind = contact.isPen ? ui::TouchKind::Pen : ui::TouchKind::Finger,
            .size = contact.size,
            .pressure = contact.pressure,
            .tilt = {contact.tiltX, contact.tiltY}};
}

}  // namespace

// ---- making

// What lives behind an editor, and a little longer than it when the host destroys it in answer to
// what it is told.
class Editor::Life : public TesselViewControllerDelegate,
                     public EditorKeysDelegate,
                     public std::enable_shared_from_this<Life> {
public:
    Life(gfx::Size size, const Settings& settings) {
        for (const auto& [language, json] : settings.texts)
            environment->addTexts(language, json);
        environment->setLanguage(settings.language.empty() ? SeatEnvironment::messageLocale()
                                                           : settings.language);
        environment->announced = [this](const std::string& text) { tellLater(onAnnounced, text); };
        environment->setUserDefault("canUseRingAnimation", settings.showsHint);
        environment->setWindow(size, settings.scale);
        const EnvironmentScope scope(environment);
        seat = std::make_unique<EditorSeat>(environment, size);
    }
    ~Life() override {
        const EnvironmentScope scope(environment);
        seat = nullptr;
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    // Does what comes from the host, and tells it then what has come of it.
    template <typename Work>
    void run(const Work& work) {
        const auto self = shared_from_this();
        if (_isWorking) return work();
        {
            const EnvironmentScope scope(environment);
            const ui::FlagScope working(_isWorking);
            _memory.run(*environment, work);
        }
        while (!_news.empty()) {
            const auto news = std::move(_news.front());
            _news.pop_front();
            news();
        }
    }
    // The host does not want to hear more.
    void leave() {
        _news.clear();
        onFinish = {};
        onClose = {};
        onCopy = {};
        onPaste = {};
        onAnnounced = {};
    }

    static Picture pictureOf(const gfx::ImageRef& image) {
        Picture picture;
        if (image) picture._bitmap = image->pixels();
        return picture;
    }
    // The pixels become the image's own where nobody else holds them.
    gfx::ImageRef imageOf(Picture picture) const {
        if (!picture) return nullptr;
        const auto bitmap = std::const_pointer_cast<gfx::Bitmap>(std::move(picture._bitmap));
        return environment->device().makeImage(
            bitmap.use_count() == 1 ? std::move(*bitmap) : *bitmap, 1, gfx::ImageOrientation::Up);
    }

    void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                const gfx::ImageRef& image) override {
        tellLater(onFinish, pictureOf(image));
    }
    void close() override { tellLater(onClose); }
    void editorKeysCopyPicture(const gfx::ImageRef& image) override {
        tellLater(onCopy, pictureOf(image));
    }
    void editorKeysPastePicture() override { tellLater(onPaste); }

    std::function<void(const Picture&)> onFinish;
    std::function<void()> onClose;
    std::function<void(const Picture&)> onCopy;
    std::function<void()> onPaste;
    std::function<void(const std::string&)> onAnnounced;
    const std::shared_ptr<HostedEnvironment> environment = std::make_shared<HostedEnvironment>();
    std::unique_ptr<EditorSeat> seat;
    // The host's clock when the run loop's began; nothing before the first turn.
    std::optional<double> start;

private:
    template <typename Receiver, typename... Told>
    void tellLater(const Receiver& receiver, const Told&... told) {
        if (receiver) _news.push_back([=] { receiver(told...); });
    }

    MemoryGuard _memory;
    bool _isWorking = false;
    // What the host has not been told yet.
    std::deque<std::function<void()>> _news;
};

std::vector<std::string> Editor::languages() {
    return Languages::given();
}

std::optional<std::string> Editor::badTexts(std::string_view language, std::string_view json) {
    return Languages().add(language, json);
}

Editor::Editor(Picture picture, double width, double height)
    : Editor(std::move(picture), width, height, Settings()) {}

Editor::Editor(Picture picture, double width, double height, const Settings& settings)
    : _life(std::make_shared<Life>(gfx::Size{width, height}, settings)) {
    gfx::ImageRef image;
    // The user is told of one that memory does not suffice for, and has an editor without it.
    _life->run([&] { image = _life->imageOf(std::move(picture)); });
    _life->run([&] {
        _life->seat->present(
            EditorSeat::makeEditor(image, _life, {settings.isPictureSize, settings.grows}), _life);
    });
}

Editor::~Editor() {
    _life->leave();
}

// ---- what it tells

void Editor::onFinish(std::function<void(const Picture& picture)> told) {
    _life->onFinish = std::move(told);
}

void Editor::onClose(std::function<void()> told) {
    _life->onClose = std::move(told);
}

void Editor::onCopy(std::function<void(const Picture& picture)> told) {
    _life->onCopy = std::move(told);
}

void Editor::onPaste(std::function<void()> told) {
    _life->onPaste = std::move(told);
}

void Editor::onAnnounced(std::function<void(const std::string& text)> told) {
    _life->onAnnounced = std::move(told);
}

void Editor::setClipboard(std::function<void(const std::string& text)> put,
                          std::function<std::string()> get) {
    _life->environment->setClipboard(std::move(put), std::move(get));
}

// ---- the mouse and fingers

void Editor::pointerPressed(double x, double y, Button button) {
    perform([&](EditorSeat& seat) { seat.mousePressed(buttonOf(button), {x, y}); });
}

void Editor::pointerMoved(double x, double y) {
    perform([&](EditorSeat& seat) { seat.mouseMoved({x, y}); });
}

void Editor::pointerLeft() {
    perform([&](EditorSeat& seat) { seat.mouseLeft(); });
}

void Editor::pointerReleased(double x, double y, Button button) {
    perform([&](EditorSeat& seat) { seat.mouseReleased(buttonOf(button), {x, y}); });
}

void Editor::wheelTurned(double x, double y, double notches) {
    perform([&](EditorSeat& seat) { seat.wheelTurned({x, y}, notches); });
}

void Editor::touchBegan(std::int64_t finger, double x, double y, const Contact& contact) {
    perform([&](EditorSeat& seat) {
        seat.window().fingersBegan({{finger, {x, y}, contactOf(contact)}});
    });
}

void Editor::touchBegan(std::int64_t finger, double x, double y) {
    touchBegan(finger, x, y, {});
}

void Editor::touchMoved(std::int64_t finger, double x, double y, const Contact& contact) {
    perform([&](EditorSeat& seat) {
        seat.window().fingersMoved({{finger, {x, y}, contactOf(contact)}});
    });
}

void Editor::touchMoved(std::int64_t finger, double x, double y) {
    touchMoved(finger, x, y, {});
}

void Editor::touchEnded(std::int64_t finger, double x, double y, const Contact& contact) {
    perform([&](EditorSeat& seat) {
        seat.window().fingersEnded({{finger, {x, y}, contactOf(contact)}});
    });
}

void Editor::touchEnded(std::int64_t finger, double x, double y) {
    touchEnded(finger, x, y, {});
}

void Editor::touchCancelled(std::int64_t finger) {
    perform([&](EditorSeat& seat) { seat.window().fingersCancelled({{finger, {}}}); });
}

// ---- keys and text

bool Editor::keyPressed(std::string_view name, bool isRepeated) {
    bool isDone = false;
    perform([&](EditorSeat& seat) { isDone = seat.pressKey(name, isRepeated); });
    return isDone;
}

void Editor::keyReleased(std::string_view name) {
    perform([&](EditorSeat& seat) { seat.releaseKey(name); });
}

void Editor::textTyped(std::string_view text) {
    std::string shown(text);
    std::erase_if(shown, [](char letter) {
        return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
    });
    if (!shown.empty()) perform([&](EditorSeat& seat) { seat.insertText(shown); });
}

void Editor::textComposed(std::string_view text, std::size_t caret) {
    perform([&](EditorSeat& seat) { seat.composeText(text, {caret, caret}); });
}

std::optional<Editor::Rect> Editor::caret() const {
    const EnvironmentScope scope(_life->environment);
    const auto focused = _life->seat->focusedText();
    if (!focused) return std::nullopt;
    const gfx::Rect caret = focused->caretRectInWindow();
    return Rect{caret.minX(), caret.minY(), caret.size.width, caret.size.height};
}

// ---- for the host

void Editor::resize(double width, double height, double scale) {
    perform([&](EditorSeat& seat) {
        const gfx::Size size{width, height};
        const bool isSame = seat.window().size() == size;
        if (isSame && _life->environment->screen().scale == scale) return;
        _life->environment->setWindow(size, scale);
        seat.window().setSize(size);
    });
}

void Editor::setKeyboardHeight(double height) {
    perform([&](EditorSeat& seat) {
        _life->environment->keyboard().setHeight(height, seat.window().size());
    });
}

void Editor::close() {
    // Where memory did not suffice for an editor nobody can be asked.
    perform(
        [&](EditorSeat& seat) { seat.remote() ? seat.remote()->askToClose() : _life->close(); });
}

bool Editor::hasWork() const {
    const EnvironmentScope scope(_life->environment);
    const auto& editor = _life->seat->editor();
    return editor && editor->hasWork();
}

void Editor::noteSaved() {
    perform([](EditorSeat& seat) {
        if (seat.editor()) seat.editor()->noteSaved();
    });
}

std::optional<std::string> Editor::addFont(std::vector<std::uint8_t> file) {
    gfx::AddedFont added;
    perform([&](EditorSeat& seat) {
        added = _life->environment->device().addFont(std::move(file));
        if (added) seat.redraw();
    });
    return added ? std::nullopt : std::optional(added.problem);
}

void Editor::openPicture(Picture picture) {
    perform([&](EditorSeat& seat) {
        if (EditorRemote* const remote = seat.remote())
            remote->openPicture(_life->imageOf(std::move(picture)));
    });
}

Editor::Picture Editor::picture() {
    Picture picture;
    perform([&](EditorSeat& seat) {
        if (seat.editor()) picture = Life::pictureOf(seat.editor()->exportedImage());
    });
    return picture;
}

// ---- time and display

void Editor::tick(double now) {
    if (!std::isfinite(now)) return;
    perform([&](EditorSeat&) {
        ui::RunLoop& loop = _life->environment->runLoop();
        if (!_life->start) _life->start = now - loop.now();
        loop.advanceTo(now - *_life->start);
    });
}

std::optional<double> Editor::nextTick() const {
    if (!_life->start) return 0.0;
    const double due = _life->environment->runLoop().nextDue();
    return due < 0 ? std::nullopt : std::optional(*_life->start + due);
}

Editor::Frame Editor::draw() {
    Frame frame;
    perform([&](EditorSeat& seat) {
        for (const gfx::Rect& rect : seat.show()) {
            frame.changed.push_back({static_cast<int>(rect.minX()), static_cast<int>(rect.minY()),
                                     static_cast<int>(rect.size.width),
                                     static_cast<int>(rect.size.height)});
        }
        const auto& surface = seat.window().surface();
        if (!surface) return;
        frame.pixels = gfx::CairoDevice::pixels(*surface);
        frame.width = surface->pixelSize().width;
        frame.height = surface->pixelSize().height;
        frame.stride = static_cast<std::size_t>(frame.width) * 4;
    });
    return frame;
}

void Editor::perform(const std::function<void(EditorSeat& seat)>& work) {
    _life->run([&] { work(*_life->seat); });
}

}  // namespace kalim
