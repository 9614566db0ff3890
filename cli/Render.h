#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/PictureFormat.h"
#include "cli/PictureWriting.h"

namespace kalim::cli {

struct RenderOptions {
    // Documents, or pictures with one inside; "-" stands for standard input.
    std::vector<std::string> files;
    // "-" stands for standard output; an empty one for a name after the document's.
    std::string output;
    // Where pictures go that are named after their documents; empty: beside these.
    std::string folder;
    // Nothing: as the output is called, else PNG.
    std::optional<PictureFormat> format;
    // One pixel a point instead of one for each of the picture's.
    bool isScreenSize = false;
    // Pixels of the longer side; larger pictures are reduced to it.
    std::optional<int> maxSide;
    // How many processes work at the same time; 0 for as many as the machine has cores.
    int workers = 0;
    // One line of JSON on standard output for each file that is done.
    bool isJson = false;
    // A picture with a document inside is just the picture.
    bool isFlat = false;
    // A document whose picture is there and no older than it is passed over.
    bool isUpdate = false;
    // Files of fonts that texts are set in.
    std::vector<std::string> fonts;
    PictureWriting writing;
};

// Runs `kalimkit render`: makes pictures of documents without a screen. Complains on standard error
// about each file that fails, and goes on with the others. The exit status.
int render(const RenderOptions& options);

}  // namespace kalim::cli
