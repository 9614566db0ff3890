#pragma once

#include <string>
#include <vector>

#include "cli/PictureWriting.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"

namespace kalim::cli {

struct PlayOptions {
    // "-" stands for standard input.
    std::string scenario;
    // Empty stands for none.
    std::string picture;
    // A picture with a document inside is just the picture.
    bool isFlat = false;
    // Files of fonts that texts are set in.
    std::vector<std::string> fonts;
    ScenarioScreen screen;
    PictureWriting writing;
};

// Runs `kalimkit play`: prints on standard output, complains on standard error. The exit status.
int play(const PlayOptions& options);

}  // namespace kalim::cli
