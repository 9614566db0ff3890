#include "cli/Play.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include "cli/Complaint.h"
#include "cli/LineReader.h"
#include "cli/PictureFiles.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::cli {

namespace {

// Lines on standard output. Each is flushed, so that what was printed stays printed when a later
// step fails; after an error nothing more is written.
class StandardOutput {
public:
    void printLine(const std::string& line) {
        if (_error) return;
        const bool isWritten = std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
                               std::fputc('\n', stdout) != EOF && std::fflush(stdout) == 0;
        if (!isWritten) _error = std::string("standard output: ") + std::strerror(errno);
    }
    const std::optional<std::string>& error() const { return _error; }

private:
    std::optional<std::string> _error;
};

}  // namespace

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
