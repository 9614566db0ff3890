#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "kalimkit/backend/html/HtmlImports.h"
#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/SealedDocument.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"

// The scenario player as a module of a page: what tests/browser/player.js calls and supplies. One
// scenario at a time. Texts are UTF-8 with their length.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace kalim::page {

// The number of a picture that the page has decoded before; 0 where it has none of this name.
KALIM_PAGE("scenario_load") int load(const char* name, int length);
// The page copies the picture before it returns.
KALIM_PAGE("scenario_save") void save(const char* name, int length, int picture);
KALIM_PAGE("scenario_print") void print(const char* line, int length);

}  // namespace kalim::page

namespace {

namespace page = kalim::page;

int lengthOf(std::string_view text) {
    return static_cast<int>(text.size());
}

class PageFiles : public kalim::ScenarioFiles {
public:
    LoadedPicture loadPicture(const std::string& path) override {
        const auto raster = kalim::gfx::HtmlRaster::adopt(page::load(path.data(), lengthOf(path)));
        if (!raster) return {nullptr, path + ": the page has no such picture"};
        return {
            std::make_shared<const kalim::gfx::Image>(raster, 1, kalim::gfx::ImageOrientation::Up),
            {}};
    }

    std::optional<std::string> savePicture(const std::string& path,
                                           const kalim::gfx::ImageRef& image) override {
        const auto raster = kalim::gfx::HtmlRaster::of(*image);
        if (!raster) return path + ": the page has no room for the picture";
        page::save(path.data(), lengthOf(path), raster->picture());
        return std::nullopt;
    }

    // Documents stay in memory, as texts without their pictures' bytes.
    std::optional<std::string> saveDocument(const std::string& path, kalim::MDrawView& canvas,
                                            const DocumentSaving& saving) override {
        if (saving.isLinked) return path + ": a page has no files to link to";
        if (saving.isSealed) {
            const kalim::SealedDocument sealed = canvas.sealedDocument();
            _documents[path] = {kalim::documentText(sealed.document), sealed.picture};
        } else {
            const kalim::gfx::ImageRef picture = canvas.sourceImage();
            _documents[path] = {kalim::documentText(canvas.document()), picture};
        }
        return std::nullopt;
    }

    LoadedDocument loadDocument(const std::string& path) override {
        const auto saved = _documents.find(path);
        if (saved == _documents.end()) return ScenarioFiles::loadDocument(path);
        kalim::ReadDocument read = kalim::readDocument(saved->second.text, {.needsBytes = false});
        return {std::move(read.document), saved->second.picture, std::move(read.problem)};
    }

private:
    struct Saved {
        std::string text;
        kalim::gfx::ImageRef picture;
    };
    std::map<std::string, Saved> _documents;
};

PageFiles files;

struct Play {
    explicit Play(const kalim::ScenarioScreen& screen)
        : player(
              device, files,
              [](const std::string& line) { page::print(line.data(), lengthOf(line)); }, screen) {}

    kalim::gfx::HtmlDevice device;
    kalim::ScenarioPlayer player;
};

// Of the next play.
std::optional<kalim::EditorSetup> editor;
bool forgiving = false;
std::unique_ptr<Play> current;
std::vector<char> given;
std::string problem;

std::string_view givenText(int length) {
    return {given.data(), static_cast<std::size_t>(length)};
}

// Zero, or the length of what problem() then points to.
int tell(std::optional<std::string> found) {
    problem = std::move(found).value_or("");
    return lengthOf(problem);
}

}  // namespace

// Where the page writes the text of the next call, as many bytes.
KALIM_EXPORT("buffer") void* buffer(int bytes) {
    given.resize(static_cast<std::size_t>(bytes) + 1);
    return given.data();
}

// ---- before the start, for the whole editor instead of the bare canvas

// The native height is 0 for a screen that is no phone's.
KALIM_EXPORT("use_editor") void useEditor(int nativeHeight) {
    editor = kalim::EditorSetup();
    if (nativeHeight) editor->nativeHeight = nativeHeight;
}

KALIM_EXPORT("use_layout") void useLayout(int length) {
    const std::string_view name = givenText(length);
    if (name == "desk") editor->layout = kalim::SeatLayout::Desk;
    if (name == "auto") editor->layout = kalim::SeatLayout::Auto;
}

KALIM_EXPORT("use_entrance")
void useEntrance(double x, double y, double width, double height, double scale) {
    editor->entrance = kalim::EditorSetup::Entrance{{x, y, width, height}, scale};
}

KALIM_EXPORT("use_default") void useDefault(int length, bool value) {
    editor->userDefaults[std::string(givenText(length))] = value;
}

KALIM_EXPORT("use_forgiving") void useForgiving() {
    forgiving = true;
}

// ---- the play

// Points, and pixels per point; the given text is the name of a picture, if any. Answers with the
// length of a problem, 0 when all went well.
KALIM_EXPORT("start") int start(double width, double height, double scale, int length) {
    current = nullptr;
    const std::string name(givenText(length));
    kalim::ScenarioScreen screen{{width, height},
                                 scale,
                                 std::exchange(forgiving, false),
                                 std::exchange(editor, std::nullopt)};
    if (screen.editor && !name.empty()) {
        auto loaded = files.loadPicture(name);
        if (!loaded.image) return tell(std::move(loaded.error));
        screen.editor->picture = loaded.image;
    }
    current = std::make_unique<Play>(screen);
    return tell(screen.editor || name.empty() ? std::nullopt : current->player.setPicture(name));
}

KALIM_EXPORT("finish") void finish() {
    current = nullptr;
}

// Answers as start().
KALIM_EXPORT("play") int play(int length) {
    return tell(current->player.play(givenText(length)));
}

KALIM_EXPORT("problem") const char* problemText() {
    return problem.data();
}
