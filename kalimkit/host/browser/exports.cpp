#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/album/KVAlbumManager.h"
#include "kalimkit/backend/html/PackedColor.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/host/browser/PageEditor.h"
#include "kalimkit/host/browser/PagePictures.h"

// What the page calls. A module holds one editor; a page with several has as many modules. What is
// longer than a number lies in the module's buffer. What asks for an editor does nothing while no
// picture is open.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

std::unique_ptr<kalim::BrowserEditor> editor;
// Doubles, so that whatever lies there is aligned.
std::vector<double> shared;
std::string answer;

kalim::gfx::TextRange range(int begin, int end) {
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

enum class Phase { Began, Moved, Ended, Cancelled };

void report(Phase phase, const kalim::ui::Finger& finger) {
    kalim::ui::Window& window = editor->window();
    switch (phase) {
        case Phase::Began:
            return window.fingersBegan({finger});
        case Phase::Moved:
            return window.fingersMoved({finger});
        case Phase::Ended:
            return window.fingersEnded({finger});
        case Phase::Cancelled:
            return window.fingersCancelled({finger});
    }
}

}  // namespace

kalim::BrowserEditor* kalim::pageEditor() {
    return editor.get();
}

std::string_view kalim::pageText(int length) {
    const std::size_t most = shared.size() * sizeof(double);
    return {reinterpret_cast<const char*>(shared.data()),
            std::min(static_cast<std::size_t>(std::max(length, 0)), most)};
}

std::vector<double> kalim::pageNumbers(int count) {
    const auto given = std::clamp(std::ptrdiff_t{count}, std::ptrdiff_t{0}, std::ssize(shared));
    return {shared.begin(), shared.begin() + given};
}

void kalim::dropPageText() {
    shared = {};
}

void kalim::setPageAnswer(std::string text) {
    answer = std::move(text);
}

// The module's buffer, at least as many bytes; it moves when it grows.
KALIM_EXPORT("buffer") void* buffer(int bytes) {
    const auto wanted = static_cast<std::size_t>(bytes) / sizeof(double) + 1;
    if (shared.size() < wanted) shared.resize(wanted);
    return shared.data();
}

// The last call's answer in words or bytes: where it is, how long; and that the page has it.
KALIM_EXPORT("answer") const char* answerBytes() {
    return answer.data();
}

KALIM_EXPORT("answer_length") int answerLength() {
    return static_cast<int>(answer.size());
}

KALIM_EXPORT("drop_answer") void dropAnswer() {
    answer = {};
}

// ---- making, size, time

KALIM_EXPORT("create") void create(double width, double height, double scale) {
    editor = std::make_unique<kalim::BrowserEditor>(kalim::gfx::Size{width, height}, scale);
}

// The desk and the kit can be used from now on.
KALIM_EXPORT("rest_arrived") void restArrived() {
    editor->setWhole();
    editor->show();
}

KALIM_EXPORT("destroy") void destroy() {
    editor = nullptr;
}

KALIM_EXPORT("resize") void resize(double width, double height, double scale) {
    editor->setSize({width, height}, scale);
    editor->show();
}

// Notches and round corners cover so much at the window's edges, in points.
KALIM_EXPORT("safe_area")
void safeArea(double top, double left, double bottom, double right) {
    editor->setSafeArea({top, left, bottom, right});
    editor->show();
}

// Whether things are to be where they go at once.
KALIM_EXPORT("reduce_motion") void reduceMotion(bool isReduced) {
    editor->environment().setPrefersReducedMotion(isReduced);
}

KALIM_EXPORT("keyboard") void keyboard(double height) {
    editor->setKeyboardHeight(height);
    editor->show();
}

// Counts seconds on the page's clock, from 0 at the creation.
KALIM_EXPORT("advance") void advance(double time) {
    editor->runLoop().advanceTo(time);
    editor->show();
}

KALIM_EXPORT("show") void show() {
    editor->show();
}

// Draws everything anew.
KALIM_EXPORT("redraw") void redraw() {
    editor->seat().redraw();
    editor->show();
}

// Below zero when nothing is due at any time.
KALIM_EXPORT("next_due") double nextDue() {
    return editor->runLoop().nextDue();
}

// ---- touches: of each finger, in the order of what happened, a time, an id, a place, and how it
// touches, see ui::TouchContact: its kind, size, pressure, below zero for none, and tilt; points,
// nine doubles in the buffer. The last ones, so many, are where the finger before them is about to
// be. All are shown together.

KALIM_EXPORT("fingers") void fingers(int phase, int count, int predicted) {
    constexpr std::ptrdiff_t each = 9;
    const auto most = std::ssize(shared) / each;
    const auto given = std::clamp(std::ptrdiff_t{count}, std::ptrdiff_t{0}, most);
    const auto numbers = std::vector<double>(shared.begin(), shared.begin() + each * given);
    const auto happened = given - std::clamp(std::ptrdiff_t{predicted}, std::ptrdiff_t{0}, given);
    editor->window().perform([&] {
        std::vector<kalim::gfx::Point> places;
        kalim::ui::Finger finger;
        for (std::ptrdiff_t i = 0; i < given; ++i) {
            const double* const number = numbers.data() + each * i;
            if (i >= happened) {
                places.push_back({number[2], number[3]});
                continue;
            }
            editor->runLoop().advanceTo(number[0]);
            finger = {static_cast<std::int64_t>(number[1]), {number[2], number[3]}};
            finger.contact.kind = static_cast<kalim::ui::TouchKind>(number[4]);
            finger.contact.size = number[5];
            if (number[6] >= 0) finger.contact.pressure = number[6];
            finger.contact.tilt = {number[7], number[8]};
            report(static_cast<Phase>(phase), finger);
        }
        if (!places.empty()) editor->window().fingerPredicted(finger.id, places);
    });
    editor->show();
}

// ---- the mouse and keys, see CanvasPointer and EditorKeys. A button is the number of a
// PointerButton; true when the editor pans with it, and it is no finger then.

KALIM_EXPORT("pan") bool pan(int phase, int number, double x, double y) {
    kalim::CanvasPointer* const pointer = editor->seat().pointer();
    if (!pointer) return false;
    const auto button = static_cast<kalim::PointerButton>(number);
    bool pans = false;
    switch (static_cast<Phase>(phase)) {
        case Phase::Began:
            pans = pointer->pointerPressed(button, {x, y});
            break;
        case Phase::Moved:
            pans = pointer->pointerMoved({x, y});
            break;
        default:
            pans = pointer->pointerReleased(button);
            break;
    }
    editor->show();
    return pans;
}

// By a wheel, which has a list that it is over move by so many points instead.
KALIM_EXPORT("zoom") void zoom(double x, double y, double factor, double across, double down) {
    const bool isScrolled =
        (across != 0 || down != 0) && editor->window().pointerScrolled({x, y}, {across, down});
    auto* const pointer = editor->seat().pointer();
    if (!isScrolled && pointer) pointer->pointerZoomed({x, y}, factor);
    editor->show();
}

// The key's name is in the buffer; whether it did something.
KALIM_EXPORT("press_key") bool pressKey(int length, bool isRepeated) {
    kalim::EditorKeys* const keys = editor->seat().keys();
    const bool done = keys && keys->press(kalim::pageText(length), isRepeated);
    editor->show();
    return done;
}

KALIM_EXPORT("release_key") void releaseKey(int length) {
    editor->seat().releaseKey(kalim::pageText(length));
}

// ---- the picture

// Opens an editor of a picture that the page has numbered. The buffer holds the language of its
// texts, such as "en-GB".
KALIM_EXPORT("open") void open(int picture, bool exportsAtPictureScale, bool grows, int length) {
    editor->environment().setLanguage(kalim::pageText(length));
    editor->open(kalim::takePagePicture(picture), exportsAtPictureScale, grows);
    editor->show();
}

// Shows it in the editor that is open, which asks first when something was drawn.
KALIM_EXPORT("offer") void offer(int picture) {
    const kalim::gfx::ImageRef image = kalim::takePagePicture(picture);
    if (auto* const remote = editor->seat().remote()) remote->openPicture(image);
    editor->show();
}

// Tells why one that was offered cannot be shown; the reason is in the buffer.
KALIM_EXPORT("refuse") void refuse(int length) {
    const std::string reason(kalim::pageText(length));
    if (auto* const remote = editor->seat().remote()) remote->refusePicture(reason);
    editor->show();
}

KALIM_EXPORT("dismiss") void dismiss() {
    editor->dismiss();
    editor->show();
}

KALIM_EXPORT("is_open") bool isOpen() {
    return editor->controller() != nullptr;
}

// Has the user choose another picture.
KALIM_EXPORT("click_pick_image") void clickPickImage() {
    if (editor->controller()) editor->controller()->clickPickImage();
    editor->show();
}

// What the user chose: a picture, 0 for one that cannot be read, less for none.
KALIM_EXPORT("picked") void picked(int picture) {
    editor->environment().answerPick(picture < 0 ? std::nullopt
                                                 : std::optional(kalim::takePagePicture(picture)));
    editor->show();
}

// 0 at the screen's scale, 1 at the picture's, 2 what the canvas shows. Answers with a picture that
// stays until end_export; 0 for none.
KALIM_EXPORT("export_picture") int exportPicture(int scale) {
    const int picture =
        editor->exportPicture(static_cast<kalim::BrowserEditor::ExportScale>(scale));
    editor->show();
    return picture;
}

KALIM_EXPORT("end_export") void endExport() {
    editor->endExport();
}

// The buffer holds the album's name; whether there was a picture to save.
KALIM_EXPORT("save_to_album") bool saveToAlbum(int length) {
    const std::string album(kalim::pageText(length));
    bool isSaved = false;
    const kalim::gfx::ImageRef image =
        editor->controller() ? editor->controller()->exportedImage() : nullptr;
    kalim::KVImageWriteToPhotosAlbum(
        image, album,
        [&](const std::string& address, const auto& /*error*/) { isSaved = !address.empty(); });
    editor->show();
    return isSaved;
}

// Says that the clipboard has refused a picture.
KALIM_EXPORT("copy_failed") void copyFailed() {
    editor->environment().tell("剪贴板不可用");
    editor->show();
}

// ---- what the page may do instead of the user; choices are lost until the editor has appeared

KALIM_EXPORT("has_appeared") bool hasAppeared() {
    return editor->controller() && editor->controller()->penPopView();
}

KALIM_EXPORT("choose_pen") void choosePen(int pen) {
    if (auto* const remote = editor->seat().remote()) remote->choosePen(static_cast<unsigned>(pen));
    editor->show();
}

KALIM_EXPORT("choose_color") void chooseColor(std::uint32_t color) {
    if (auto* const remote = editor->seat().remote()) {
        remote->chooseColor(kalim::gfx::unpackedColor(color));
    }
    editor->show();
}

KALIM_EXPORT("choose_line_width") void chooseLineWidth(double width) {
    if (auto* const remote = editor->seat().remote()) remote->chooseLineWidth(width);
    editor->show();
}

// The buffer holds the title of the close button, or of the send button.
KALIM_EXPORT("set_title") void setTitle(bool isCloseButton, int length) {
    if (editor->controller()) {
        editor->controller()->setTopNavigationItemTitle(isCloseButton,
                                                        std::string(kalim::pageText(length)));
    }
    editor->show();
}

KALIM_EXPORT("ask_to_close") void askToClose() {
    if (auto* const remote = editor->seat().remote()) remote->askToClose();
    editor->show();
}

KALIM_EXPORT("undo") bool undo() {
    const bool happened = editor->canvas() && editor->canvas()->undo();
    editor->show();
    return happened;
}

KALIM_EXPORT("redo") bool redo() {
    const bool happened = editor->canvas() && editor->canvas()->redo();
    editor->show();
    return happened;
}

// ---- text, in the buffer; offsets are bytes. False while no text has the focus.

KALIM_EXPORT("insert_text") bool insertText(int length) {
    const bool done = editor->seat().insertText(kalim::pageText(length));
    editor->show();
    return done;
}

KALIM_EXPORT("replace_text") bool replaceText(int begin, int end, int length) {
    const bool done = editor->seat().replaceText(range(begin, end), kalim::pageText(length));
    editor->show();
    return done;
}

KALIM_EXPORT("select_text") bool selectText(int begin, int end) {
    return editor->seat().selectText(range(begin, end));
}

KALIM_EXPORT("compose_text") bool composeText(int length, int begin, int end) {
    const bool done = editor->seat().composeText(kalim::pageText(length), range(begin, end));
    editor->show();
    return done;
}
