#include "cli/Edit.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <future>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "cli/Complaint.h"
#include "cli/EditOutput.h"
#include "cli/EditRecovery.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/host/headless/LiveScenario.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim::cli {

namespace {

constexpr int written = 0;
constexpr int closed = 1;

// The window's sizes are points.
constexpr gfx::Size leastSize{360, 520};
constexpr gfx::Size usualSize{480, 720};
// Above and below the picture, where the tool bar and the pen button are.
constexpr double chromeHeight = 90;
// The window takes at most this part of the desktop.
constexpr double largestShare = 0.85;

struct SdlWindowDeleter {
    void operator()(::SDL_Window* window) const { SDL_DestroyWindow(window); }
};
using SdlWindowHandle = std::unique_ptr<::SDL_Window, SdlWindowDeleter>;

// SDL from its start to its end.
class Video {
public:
    Video() : _problem(SdlWindow::startVideo()) {}
    ~Video() { SDL_Quit(); }
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;
    const std::optional<std::string>& problem() const { return _problem; }

private:
    std::optional<std::string> _problem;
};

// Pixels of a window that shows the picture as large as it is, or as fits on the desktop.
gfx::Size windowSize(const codec::DecodeResult& photo, double scale) {
    SDL_Rect desktop{0, 0, 1280, 800};
    SDL_GetDisplayUsableBounds(0, &desktop);
    const double chrome = 2 * chromeHeight * scale;
    const gfx::Size room{desktop.w * largestShare, desktop.h * largestShare - chrome};
    gfx::Size size = usualSize * scale;
    if (!photo.error) {
        const gfx::PixelSize pixels = photo.bitmap.size();
        size = {static_cast<double>(pixels.width), static_cast<double>(pixels.height)};
        if (gfx::exchangesSides(photo.orientation)) std::swap(size.width, size.height);
    }
    const double fitting = std::min({1.0, room.width / size.width, room.height / size.height});
    return {std::max(std::round(size.width * fitting), leastSize.width * scale),
            std::max(std::round(size.height * fitting) + chrome, leastSize.height * scale)};
}

std::string titleOf(const std::string& photo) {
    return photo.substr(photo.find_last_of('/') + 1) + " - KalimKit";
}

// Hidden, for the photo's size is not known yet. The connection to the input method and much else
// that takes time comes with the window.
SdlWindowHandle openWindow(const EditOptions& options) {
    const std::string title = options.photo == "-" ? "KalimKit" : titleOf(options.photo);
    const gfx::Size size = usualSize * options.scale;
    return SdlWindowHandle(SDL_CreateWindow(
        title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, static_cast<int>(size.width),
        static_cast<int>(size.height), SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN));
}

void showWindow(::SDL_Window* window, gfx::Size size, double scale) {
    SDL_SetWindowMinimumSize(window, static_cast<int>(leastSize.width * scale),
                             static_cast<int>(leastSize.height * scale));
    SDL_SetWindowSize(window, static_cast<int>(size.width), static_cast<int>(size.height));
    SDL_SetWindowPosition(window, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_ShowWindow(window);
}

// A file, and the picture in it.
struct Opened {
    EditRecovery::File file;
    codec::DecodeResult picture;
};

Opened open(codec::Bytes bytes, const std::string& path, const std::string& name) {
    codec::DecodeResult picture = codec::decode(bytes, name);
    return {EditRecovery::makeFile(path, std::move(bytes)), std::move(picture)};
}

// Keeps one photo in the editor, from the window's opening to its end.
class Session : public TesselViewControllerDelegate {
public:
    Session(::SDL_Window* sdl, const EditOptions& options, EditOutput output)
        : _options(options),
          _output(std::move(output)),
          _window(sdl, options.scale),
          _recovery(_window, options.recovery) {
        // The search for the fonts takes longer than the first frame, which would wait for it.
        _window.environment().device().lineMetrics({});
        // Without either the format follows the picture.
        const bool isFormatGiven =
            options.format || (!options.output.empty() && options.output != "-");
        _window.setPictureRefusal([this, isFormatGiven](gfx::PixelSize size) {
            const bool isFree = _options.isScreenSize || !isFormatGiven;
            return isFree ? std::nullopt : _output.problemOf(size);
        });
        _window.setPictureTaken([this, sdl](const std::string& path) {
            _output.follow(_options, path);
            _recovery.follow(path);
            SDL_SetWindowTitle(sdl, titleOf(path.empty() ? "clipboard" : path).c_str());
        });
    }

    // Why the result of this photo could not be written, so that nobody draws on it in vain.
    std::optional<std::string> problemOf(const codec::DecodeResult& photo) const {
        if (photo.error || _options.isScreenSize) return std::nullopt;
        return _output.problemOf(photo.bitmap.size());
    }

    int run(Opened photo, const std::shared_ptr<Session>& self) {
        bool isShown = false;
        try {
            isShown = show(std::move(photo.picture), self);
        } catch (const std::bad_alloc&) {
            complain("there is not enough memory for the picture");
            show({}, self);
        }
        if (isShown) {
            chooseTools();
            _recovery.start(std::move(photo.file), _picture);
            playScenario();
        } else {
            refusePhoto();
        }
        if (!_isOver) _window.run();
        _window.present(nullptr);
        return _status;
    }

    void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                const gfx::ImageRef& image) override {
        if (_status == failure) return;
        const auto problem =
            image ? _output.write(*image) : std::optional<std::string>("there is nothing to write");
        if (problem) {
            complain(*problem);
            tell("无法保存图片", *problem, {});
            return;
        }
        if (!_output.written().empty()) say("the picture is in " + _output.written());
        _recovery.end();
        end(written);
    }

    void close() override {
        _recovery.end();
        end(_status);
    }

private:
    // Presents the editor. Whether it has a picture.
    bool show(codec::DecodeResult photo, const std::shared_ptr<Session>& self) {
        gfx::Device& device = _window.environment().device();
        _picture = photo.bitmap.isEmpty()
                       ? nullptr
                       : device.makeImage(std::move(photo.bitmap), 1, photo.orientation);
        _window.present(
            EditorSeat::makeEditor(_picture, self, {!_options.isScreenSize, _options.grows}));
        _window.update();
        return _picture != nullptr;
    }

    void end(int status) {
        _status = status;
        _isOver = true;
        _window.stop();
    }

    void tell(const char* title, const std::string& message, std::function<void()> then) {
        SdlEnvironment& environment = _window.environment();
        environment.presentAlert({environment.localizedString(title),
                                  environment.localizedString(message),
                                  {environment.localizedString("好")},
                                  [then = std::move(then)](std::size_t) {
                                      if (then) then();
                                  }});
    }

    void refusePhoto() {
        _status = failure;
        tell("无法载入图片", "载入此图片时出错", [this] { end(failure); });
    }

    void chooseTools() {
        EditorRemote& remote = *_window.seat().remote();
        if (_options.pen) remote.choosePen(*_options.pen);
        if (_options.color) remote.chooseColor(_options.color);
        if (_options.lineWidth) remote.chooseLineWidth(*_options.lineWidth);
    }

    void playScenario() {
        codec::Bytes bytes;
        if (_options.scenario.empty()) return;
        if (const auto problem = codec::readFile(_options.scenario, bytes)) {
            complain(*problem);
            end(failure);
            return;
        }
        LiveScenario scenario(_window.seat(), [this](double seconds) {
            _window.run(seconds);
            // A loop that ended early was stopped.
            _isOver = _isOver || _window.isStopped();
        });
        const std::string text(bytes.begin(), bytes.end());
        std::string_view rest = text;
        for (int line = 1; !rest.empty() && !_isOver; ++line) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            playLine(scenario, rest.substr(0, end), line);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }

    void playLine(LiveScenario& scenario, std::string_view text, int line) {
        const auto problem = scenario.play(text);
        if (!_isOver) _window.update();
        if (!problem) return;
        complain(_options.scenario + ":" + std::to_string(line) + ": " + *problem);
        end(failure);
    }

    const EditOptions& _options;
    EditOutput _output;
    SdlWindow _window;
    EditRecovery _recovery;
    gfx::ImageRef _picture;
    int _status = closed;
    bool _isOver = false;
};

}  // namespace

int edit(const EditOptions& options) {
    codec::Bytes bytes;
    const bool isPiped = options.photo == "-";
    const std::string name = isPiped ? "standard input" : options.photo;
    if (const auto problem = codec::readPictureFile(isPiped ? "/dev/stdin" : name, bytes)) {
        return complain(*problem);
    }
    std::string problem;
    std::optional<EditOutput> output = EditOutput::make(options, bytes, problem);
    if (!output) return complain(problem);
    // Large photos take longer than the connection to the screen and the window do.
    auto opening =
        std::async(std::launch::async, [&] { return open(std::move(bytes), options.photo, name); });
    const Video video;
    const SdlWindowHandle window = video.problem() ? nullptr : openWindow(options);
    std::shared_ptr<Session> session;
    if (window) {
        session = std::make_shared<Session>(window.get(), options, std::move(*output));
    } else {
        problem =
            video.problem().value_or(std::string("no window can be opened: ") + SDL_GetError());
    }
    Opened photo = opening.get();
    if (photo.picture.error) complain(*photo.picture.error);
    if (!session) return complain(problem);
    // Nobody sees an alert that waits at the end of a pipe.
    if (photo.picture.error && isPiped) return failure;
    if (const auto unwritable = session->problemOf(photo.picture)) {
        return complain(name + ": " + *unwritable);
    }
    showWindow(window.get(), windowSize(photo.picture, options.scale), options.scale);
    return session->run(std::move(photo), session);
}

}  // namespace kalim::cli
