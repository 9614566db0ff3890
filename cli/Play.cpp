#include "cli/Play.h"

#include <memory>
#include <optional>

#include "cli/Complaint.h"
#include "cli/Fonts.h"
#include "cli/LineReader.h"
#include "cli/Opening.h"
#include "cli/PictureFiles.h"
#include "cli/StandardOutput.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::cli {

namespace {

// What --picture names: a picture, or a document with its own.
struct Start {
    gfx::ImageRef picture;
    std::optional<ScenarioFiles::LoadedDocument> document;
};

std::optional<std::string> readStart(const PlayOptions& options, PictureFiles& files,
                                     Start& start) {
    if (options.picture.empty()) return std::nullopt;
    OpenedFile opened = openFile(options.picture, sandboxed(options.isFlat));
    if (opened.error) return opened.error;
    if (!opened.document) {
        ScenarioFiles::LoadedPicture loaded = files.takePicture(std::move(opened));
        start.picture = std::move(loaded.image);
        return start.picture ? std::nullopt : std::optional(loaded.error);
    }
    start.document = files.takeDocument(std::move(opened));
    start.picture = start.document->picture;
    return start.document->error;
}

std::optional<std::string> begin(ScenarioPlayer& player, const Start& start, bool isEditor) {
    if (start.document) return player.openDocument(*start.document);
    if (start.picture && !isEditor) player.setPicture(start.picture);
    return std::nullopt;
}

}  // namespace

int play(const PlayOptions& options) {
    LineReader reader(options.scenario);
    if (reader.error()) return complain(*reader.error());
    const std::shared_ptr<gfx::CairoDevice> device = gfx::CairoDevice::make();
    if (const auto problem = addFonts(*device, options.fonts)) return complain(*problem);
    PictureFiles files(*device, options.writing);
    StandardOutput output;
    ScenarioScreen screen = options.screen;
    Start start;
    if (const auto problem = readStart(options, files, start))
        return complain("--picture: " + *problem);
    if (screen.editor) screen.editor->picture = start.picture;
    ScenarioPlayer player(
        *device, files, [&](const std::string& line) { output.printLine(line); }, screen);
    if (const auto problem = begin(player, start, screen.editor.has_value()))
        return complain("--picture: " + options.picture + ": " + *problem);
    while (reader.next()) {
        const auto problem = player.play(reader.line());
        if (output.error()) return complain(*output.error());
        if (problem) return complain(reader.place() + ": " + *problem);
    }
    return reader.error() ? complain(*reader.error()) : 0;
}

}  // namespace kalim::cli
