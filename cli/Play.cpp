#include "cli/Play.h"

#include <memory>
#include <optional>

#include "cli/Complaint.h"
#include "cli/LineReader.h"
#include "cli/PictureFiles.h"
#include "cli/StandardOutput.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::cli {

int play(const PlayOptions& options) {
    LineReader reader(options.scenario);
    if (reader.error()) return complain(*reader.error());
    const std::shared_ptr<gfx::CairoDevice> device = gfx::CairoDevice::make();
    PictureFiles files(*device);
    StandardOutput output;
    ScenarioScreen screen = options.screen;
    const bool hasPicture = !options.picture.empty();
    if (screen.editor && hasPicture) {
        ScenarioFiles::LoadedPicture loaded = files.loadPicture(options.picture);
        if (!loaded.image) return complain("--picture: " + loaded.error);
        screen.editor->picture = loaded.image;
    }
    ScenarioPlayer player(
        *device, files, [&](const std::string& line) { output.printLine(line); }, screen);
    if (!screen.editor && hasPicture) {
        if (const auto problem = player.setPicture(options.picture)) {
            return complain("--picture: " + *problem);
        }
    }
    while (reader.next()) {
        const auto problem = player.play(reader.line());
        if (output.error()) return complain(*output.error());
        if (problem) return complain(reader.place() + ": " + *problem);
    }
    return reader.error() ? complain(*reader.error()) : 0;
}

}  // namespace kalim::cli
