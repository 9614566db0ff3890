#include "cli/Edit.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <future>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "cli/Complaint.h"
#include "cli/EditDocument.h"
#include "cli/EditOutput.h"
#include "cli/EditRecovery.h"
#include "cli/EditWindow.h"
#include "cli/Fonts.h"
#include "cli/Opening.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/Sandbox.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/SavedDocument.h"
#include "kalimkit/host/headless/LiveScenario.h"
#include "kalimkit/host/sdl/DesktopLook.h"
#include "kalimkit/host/sdl/SdlWindow.h"
#include "kalimkit/host/seat/ReopenQuestion.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim::cli {

namespace {

constexpr int written = 0;
constexpr int closed = 1;

// A file that was opened, as itself and as what becomes of its work.
struct Opened {
    EditRecovery::File file;
    OpenedFile photo;
};

Opened open(OpenedFile photo, const EditOptions& options) {
    return {EditRecovery::makeFile(options.photo, photo.bytes), std::move(photo)};
}

// Keeps one photo in the editor, from the window's opening to its end.
class Session : public TesselViewControllerDelegate {
public:
    Session(::SDL_Window* sdl, const EditOptions& options, EditOutput output)
        : _sdl(sdl),
          _options(options),
          _output(std::move(output)),
          _document(options),
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
        const auto takeOther = [this](const std::string& path, bool isDocument) {
            take(path, isDocument);
            _recovery.follow(path);
        };
        _window.environment().setDecoder(codec::decodeSandboxed);
        _window.setPictureTaken([=](const std::string& path) { takeOther(path, false); });
        _window.setDocumentTaken([=](const std::string& path) { takeOther(path, true); });
        _window.setDocumentSaver([this] { saveDocument(); });
        _window.setPictureSaver([this](const gfx::ImageRef& image,
                                       const std::string& path) { savePicture(image, path); },
                                _output.isFile());
        _window.setPictureCopied([this] { keep(); });
        if (_options.onEnter) _window.setEnterTaker([this] { return act(*_options.onEnter); });
        if (_options.onEscape) _window.setEscapeTaker([this] { return act(*_options.onEscape); });
        dress();
        _window.seat().setPens(_options.pens);
        _window.seat().setColors(_options.colors);
        _window.seat().setWidths(_options.widths);
    }

    // Why the result of this photo could not be written, so that nobody draws on it in vain.
    std::optional<std::string> takeFonts() {
        return addFonts(_window.environment().device(), _options.fonts);
    }

    std::optional<std::string> problemOf(const OpenedFile& photo) const {
        if (photo.error || _options.isScreenSize) return std::nullopt;
        return _output.problemOf(photo.picture.bitmap.size());
    }

    void showWindow(const codec::DecodeResult& picture) {
        cli::showWindow(_window, _sdl, picture, _options);
    }

    int run(Opened opened, const std::shared_ptr<Session>& self) {
        bool isShown = false;
        const bool isAsked =
            _options.inside == EditOptions::Inside::Ask && hasDocumentInside(opened.photo.bytes);
        try {
            isShown = show(std::move(opened.photo), self);
        } catch (const std::bad_alloc&) {
            complain("there is not enough memory for the picture");
            show({}, self);
        }
        if (isShown) {
            chooseTools();
            startRecovery(std::move(opened.file), isAsked);
            playScenario();
        } else {
            refusePhoto();
        }
        if (!_isOver) _window.run();
        if (!_isOver) keepWhatIsUnderWay();
        rememberSize(_window, _sdl, _options);
        _window.present(nullptr);
        return _status;
    }

    void didDrawViewControllerFinishHandleImage(TesselViewController& /*controller*/,
                                                const gfx::ImageRef& image) override {
        if (_status == failure) return;
        const auto problem =
            image ? send(image) : std::optional<std::string>("there is nothing to write");
        if (problem) {
            complain(*problem);
            tell("无法保存图片", *problem, {});
            return;
        }
        if (_options.copies && !_window.copyPicture(image)) return;
        if (!_output.written().empty()) say("the picture is in " + _output.written());
        if (_document.isSentAlong()) say("the document is in " + _document.saved());
        _recovery.end();
        end(written);
    }

    void close() override {
        _recovery.end();
        end(_status);
    }

private:
    // What is edited is this file now, or the clipboard's picture for an empty path.
    void take(const std::string& path, bool isDocument) {
        _output.follow(_options, path);
        _document.follow(path, isDocument);
        SDL_SetWindowTitle(_sdl, titleOf(path.empty() ? "clipboard" : path).c_str());
    }

    // Presents the editor. Whether it has a picture or a document.
    bool show(OpenedFile photo, const std::shared_ptr<Session>& self) {
        _picture = _window.origins().make(_window.environment().device(), photo);
        _window.seat().setLayout(_options.layout);
        _window.present(
            EditorSeat::makeEditor(_picture, self, {!_options.isScreenSize, _options.grows}));
        _window.update();
        _document.follow(_options.photo, false);
        if (!photo.document) return _picture != nullptr;
        const auto problem = openDocument(photo, _picture);
        if (problem) complain(_options.photo + ": " + *problem);
        return !problem;
    }

    std::optional<std::string> openDocument(const OpenedFile& opened, const gfx::ImageRef& image) {
        const auto problem = _window.seat().editor()->openDocument(*opened.document, image);
        if (!problem) _document.follow(_options.photo, !opened.isInside);
        return problem;
    }

    // Unfinished work comes before the document inside, which it may have begun with.
    void startRecovery(EditRecovery::File file, bool isAsked) {
        const auto bytes = std::make_shared<const codec::Bytes>(file.bytes);
        const auto pictureOf = [this, bytes](const std::string& sha256,
                                             const codec::Bytes* pasted) {
            return pasted ? pastedPicture(*pasted) : pictureForWork(*bytes, sha256);
        };
        _recovery.start(std::move(file), pictureOf, [this, bytes, isAsked] {
            if (isAsked) askAboutInside(bytes);
        });
    }

    // Where a work has begun with the document inside, the picture is that one's.
    gfx::ImageRef pictureForWork(const codec::Bytes& bytes, const std::string& sha256) {
        const auto origin = _window.origins().find(_picture);
        if (sha256.empty() || !origin || kalim::sha256(origin->data) == sha256) return _picture;
        OpenedFile opened = openBytes(bytes, _options.photo, sandboxed());
        const gfx::ImageRef image = _window.origins().make(_window.environment().device(), opened);
        return image ? image : _picture;
    }

    gfx::ImageRef pastedPicture(const codec::Bytes& bytes) {
        OpenedFile opened = openBytes(bytes, ".", sandboxed(true));
        take("", false);
        return _window.origins().make(_window.environment().device(), opened);
    }

    void askAboutInside(const std::shared_ptr<const codec::Bytes>& bytes) {
        askToReopen([this, bytes](bool goesOn) {
            if (!goesOn) return;
            OpenedFile opened = openBytes(*bytes, _options.photo, sandboxed());
            const gfx::ImageRef image =
                _window.origins().make(_window.environment().device(), opened);
            const auto problem = opened.error ? opened.error : openDocument(opened, image);
            if (!problem) return _recovery.follow(_options.photo);
            complain(*problem);
            _window.seat().remote()->refusePicture(*problem);
        });
    }

    // The document that the picture carries, if any; what went wrong, or nothing.
    std::optional<std::string> readInside(std::string& inside) {
        if (!_options.isDocumentInside) return std::nullopt;
        const auto problem = documentTextOf(
            *_window.seat().canvas(), _window.origins(),
            {.isSealed = true, .metadata = _options.writing.metadata, .isSandboxed = true}, ".",
            inside);
        if (problem) return "the document inside: " + *problem;
        return std::nullopt;
    }

    // Both or a sentence that says what went wrong.
    std::optional<std::string> send(const gfx::ImageRef& image) {
        MDrawView& canvas = *_window.seat().canvas();
        const codec::SavedPicture saved =
            encodeExport(image, canvas, _window.origins(), _output.savingOptions());
        std::string inside;
        if (auto problem = readInside(inside)) return problem;
        if (_document.isSentAlong()) {
            if (auto problem = _document.save(canvas, _window.origins())) return problem;
        }
        return _output.write(saved, inside);
    }

    void saveDocument() {
        if (const auto problem = _document.save(*_window.seat().canvas(), _window.origins())) {
            complain(*problem);
            tell("无法保存文档", *problem, {});
        } else {
            say("the document is in " + _document.saved());
            noteSaved(_document.saved());
            if (_document.hasSavedOpened()) _recovery.save(_document.saved());
        }
    }

    // To a place that the user has chosen, or for an empty path to where it belongs.
    void savePicture(const gfx::ImageRef& image, const std::string& path) {
        const codec::SavingOptions options =
            path.empty() ? _output.savingOptions() : _output.savingOptionsFor(path);
        const codec::SavedPicture saved =
            encodeExport(image, *_window.seat().canvas(), _window.origins(), options);
        std::string inside;
        auto problem = options.format == codec::FileFormat::Png ? readInside(inside) : std::nullopt;
        if (!problem) {
            problem =
                path.empty() ? _output.save(saved, inside) : _output.writeTo(path, saved, inside);
        }
        if (problem) {
            complain(*problem);
            return tell("无法保存图片", *problem, {});
        }
        say("the picture is in " + _output.written());
        noteSaved(_output.written());
        keep();
    }

    void noteSaved(const std::string& path) {
        _window.seat().editor()->noteSaved();
        const std::string name = std::filesystem::path(path).filename();
        // A name has an order of its own in a text of either direction: between Unicode's isolates.
        const std::string isolated = "\u2068" + name + "\u2069";
        _window.seat().remote()->showNote(ui::localText("已保存为 {file}", {{"file", isolated}}));
    }

    // What was drawn is somewhere besides the window.
    void keep() {
        _isKept = true;
        if (!_options.endsEarly) return;
        _recovery.end();
        end(written);
    }

    // What a key does instead of what it does in every editor.
    bool act(const std::vector<EditOptions::Action>& actions) {
        _isKept = false;
        for (const EditOptions::Action action : actions) {
            if (_isOver) break;
            if (action == EditOptions::Action::SaveToFile) saveToFile();
            if (action == EditOptions::Action::SaveToClipboard)
                _window.seat().keys()->copyPicture();
            if (action == EditOptions::Action::Exit) leave();
        }
        return true;
    }

    void saveToFile() {
        if (_output.isFile()) {
            _window.seat().keys()->savePicture();
        } else {
            // Standard output takes one picture, and that is the end.
            _window.seat().editor()->toolView()->handleConfirm();
        }
    }

    // Work that the key has kept is not asked about.
    void leave() {
        if (!_isKept) return _window.seat().remote()->askToClose();
        _recovery.end();
        end(written);
    }

    // Texts and colours as they are asked for, or as the desktop has them.
    void dress() {
        SdlEnvironment& environment = _window.environment();
        if (!_options.language.empty()) environment.setLanguage(_options.language);
        using enum EditOptions::Theme;
        ui::Appearance appearance;
        if (_options.theme == Auto) appearance = desktopAppearance();
        appearance.isDark = appearance.isDark || _options.theme == Dark;
        appearance.hasHighContrast = appearance.hasHighContrast || _options.theme == Contrast;
        environment.setAppearance(appearance);
    }

    // A signal or the end of the session comes in the middle of a text or a drag; what there is of
    // it is a step, with which the next window goes on.
    void keepWhatIsUnderWay() {
        if (const auto canvas = _window.seat().canvas()) canvas->finalizeCurrentDrawing();
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

    ::SDL_Window* _sdl;
    const EditOptions& _options;
    EditOutput _output;
    EditDocument _document;
    SdlWindow _window;
    EditRecovery _recovery;
    gfx::ImageRef _picture;
    int _status = closed;
    bool _isOver = false;
    // The last thing that a key did has put the drawing somewhere.
    bool _isKept = false;
};

}  // namespace

namespace {

// A document is read at once: its picture's format is that of the result. Its error is the
// caller's.
OpenedFile readDocumentOf(const EditOptions& options, codec::Bytes& bytes) {
    const bool isReopened = options.inside == EditOptions::Inside::Reopen &&
                            codec::mayBePicture(bytes) && hasDocumentInside(bytes);
    if (!isReopened && !mayBeDocument(bytes)) return {};
    return openBytes(std::move(bytes), options.photo, sandboxed());
}

// That of the photo, or of a document's own.
codec::ByteSpan pictureBytes(const OpenedFile& document, codec::ByteSpan photo) {
    if (!document.document || document.isInside)
        return document.bytes.empty() ? photo : document.bytes;
    if (!document.document->picture) return {};
    const std::string& data = document.document->picture->data;
    return {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()};
}

}  // namespace

int edit(const EditOptions& asked) {
    EditOptions options = asked;
    codec::Bytes bytes;
    const bool isPiped = options.photo == "-";
    const std::string name = isPiped ? "standard input" : options.photo;
    if (const auto problem = readOpenable(options.photo, bytes)) return complain(*problem);
    OpenedFile photo = readDocumentOf(options, bytes);
    if (photo.error) return complain(*photo.error);
    std::string problem;
    std::optional<EditOutput> output =
        EditOutput::make(options, pictureBytes(photo, bytes), problem);
    if (output) problem = EditDocument::problemOf(options, output->path(), photo);
    if (!problem.empty()) return complain(problem);
    // Large photos take longer than the connection to the screen and the window do.
    std::future<Opened> opening;
    if (!photo.document) {
        opening = std::async(std::launch::async, [&] {
            return open(openBytes(std::move(bytes), options.photo, sandboxed(true)), options);
        });
    }
    const Video video;
    const SdlWindowHandle window = video.problem() ? nullptr : openWindow(options);
    if (window && options.scale == 0) options.scale = desktopScale(window.get());
    std::shared_ptr<Session> session;
    if (window) {
        session = std::make_shared<Session>(window.get(), options, std::move(*output));
    } else {
        problem =
            video.problem().value_or(std::string("no window can be opened: ") + SDL_GetError());
    }
    Opened opened = opening.valid() ? opening.get() : open(std::move(photo), options);
    if (opened.photo.error) complain(*opened.photo.error);
    if (!session) return complain(problem);
    if (const auto wrongFont = session->takeFonts()) return complain(*wrongFont);
    // Nobody sees an alert that waits at the end of a pipe, and what is called a document was never
    // a photo.
    const bool isDocumentByName = std::string_view(options.photo).ends_with(".kalim");
    if (opened.photo.error && (isPiped || isDocumentByName)) return failure;
    if (const auto unwritable = session->problemOf(opened.photo)) {
        return complain(name + ": " + *unwritable);
    }
    session->showWindow(opened.photo.picture);
    return session->run(std::move(opened), session);
}

}  // namespace kalim::cli
