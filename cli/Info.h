#pragma once

#include <string>

namespace kalim::cli {

struct InfoOptions {
    // "-" stands for standard input.
    std::string file;
    // A picture with a document inside is just the picture.
    bool isFlat = false;
};

// Runs `kalimkit info`: prints one JSON object that says what a file is. Complains on standard
// error. The exit status.
int info(const InfoOptions& options);

}  // namespace kalim::cli
