#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/backend/html/PackedColor.h"
#include "kalimkit/host/browser/BrowserCanvas.h"

// What the page calls. A module holds one canvas; a page with several has as many modules. What is
// longer than a number lies in the module's buffer.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

std::unique_ptr<kalim::BrowserCanvas> canvas;
// Doubles, so that whatever lies there is aligned.
std::vector<double> shared;

std::string_view sharedText(int length) {
    return {reinterpret_cast<const char*>(shared.data()), static_cast<std::size_t>(length)};
}

kalim::gfx::TextRange range(int begin, int end) {
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

enum class Phase { Began, Moved, Ended, Cancelled };

}  // namespace

// The module's buffer, at least as many bytes; it moves when it grows.
KALIM_EXPORT("buffer") void* buffer(int bytes) {
    const auto wanted = static_cast<std::size_t>(bytes) / sizeof(double) + 1;
    if (shared.size() < wanted) shared.resize(wanted);
    return shared.data();
}

// ---- making, size, time

KALIM_EXPORT("create") void create(double width, double height, double scale) {
    canvas = std::make_unique<kalim::BrowserCanvas>(kalim::gfx::Size{width, height}, scale);
    canvas->show();
}

KALIM_EXPORT("destroy") void destroy() {
    canvas = nullptr;
}

KALIM_EXPORT("resize") void resize(double width, double height, double scale) {
    canvas->setSize({width, height}, scale);
    canvas->show();
}

KALIM_EXPORT("keyboard") void keyboard(double height) {
    canvas->setKeyboardHeight(height);
    canvas->show();
}

// Seconds on the page's clock, from 0 at the creation.
KALIM_EXPORT("advance") void advance(double time) {
    canvas->runLoop().advanceTo(time);
    canvas->show();
}

// Below zero when nothing is due at any time.
KALIM_EXPORT("next_due") double nextDue() {
    return canvas->runLoop().nextDue();
}

// ---- touches: of each finger an id and a place, points, three doubles in the buffer

KALIM_EXPORT("fingers") void fingers(int phase, int count) {
    std::vector<kalim::ui::Finger> changed;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const double* const given = &shared[3 * i];
        changed.push_back({static_cast<std::int64_t>(given[0]), {given[1], given[2]}});
    }
    kalim::ui::Window& window = canvas->window();
    switch (static_cast<Phase>(phase)) {
        case Phase::Began:
            window.fingersBegan(changed);
            break;
        case Phase::Moved:
            window.fingersMoved(changed);
            break;
        case Phase::Ended:
            window.fingersEnded(changed);
            break;
        case Phase::Cancelled:
            window.fingersCancelled(changed);
            break;
    }
    canvas->show();
}

// ---- the picture

// Takes over a picture that the page has numbered; 0 for none.
KALIM_EXPORT("set_picture") void setPicture(int picture, double scale) {
    const auto raster = kalim::gfx::HtmlRaster::adopt(picture);
    canvas->view().setSnipImage(raster ? std::make_shared<const kalim::gfx::Image>(
                                             raster, scale, kalim::gfx::ImageOrientation::Up)
                                       : nullptr);
    canvas->show();
}

// 0 at the screen's scale, 1 at the picture's, 2 what the view shows. Answers with a picture that
// stays until end_export.
KALIM_EXPORT("export_picture") int exportPicture(int scale) {
    const int picture =
        canvas->exportPicture(static_cast<kalim::BrowserCanvas::ExportScale>(scale));
    canvas->show();
    return picture;
}

KALIM_EXPORT("end_export") void endExport() {
    canvas->endExport();
}

// ---- the canvas's operations, by their own names in lower case

KALIM_EXPORT("begin_drawing_for_type") void beginDrawingForType(int type, int drawType) {
    canvas->view().beginDrawingForTypeWithDrawType(type, static_cast<std::uint64_t>(drawType));
    canvas->show();
}

KALIM_EXPORT("set_draw_color") void setDrawColor(std::uint32_t color, bool isTranslucent) {
    canvas->view().setDrawColorIsTranslucent(kalim::gfx::unpackedColor(color), isTranslucent);
    canvas->show();
}

KALIM_EXPORT("set_draw_line_width") void setDrawLineWidth(double width) {
    canvas->view().setDrawLineWidth(width);
    canvas->show();
}

KALIM_EXPORT("undo") bool undo() {
    const bool happened = canvas->view().undo();
    canvas->show();
    return happened;
}

KALIM_EXPORT("redo") bool redo() {
    const bool happened = canvas->view().redo();
    canvas->show();
    return happened;
}

KALIM_EXPORT("delete_selected_tools") void deleteSelectedTools() {
    canvas->view().deleteSelectedTools();
    canvas->show();
}

KALIM_EXPORT("select_none") void selectNone() {
    canvas->view().selectNone();
    canvas->show();
}

KALIM_EXPORT("finish_edit_text") void finishEditText() {
    canvas->view().finishEditText();
    canvas->show();
}

KALIM_EXPORT("clear_tools") void clearTools() {
    canvas->view().clearTools();
    canvas->show();
}

KALIM_EXPORT("tool_count") int toolCount() {
    return static_cast<int>(canvas->view().tools().size());
}

// ---- text, in the buffer; offsets are bytes. False while no text has the focus.

KALIM_EXPORT("insert_text") bool insertText(int length) {
    const bool done = canvas->insertText(sharedText(length));
    canvas->show();
    return done;
}

KALIM_EXPORT("replace_text") bool replaceText(int begin, int end, int length) {
    const bool done = canvas->replaceText(range(begin, end), sharedText(length));
    canvas->show();
    return done;
}

KALIM_EXPORT("compose_text") bool composeText(int length, int begin, int end) {
    const bool done = canvas->composeText(sharedText(length), range(begin, end));
    canvas->show();
    return done;
}

// A key as KeyStroke reads it; false also for one that a text does nothing with.
KALIM_EXPORT("press_key") bool pressKey(int length) {
    const bool done = canvas->pressKey(sharedText(length));
    canvas->show();
    return done;
}
