#pragma once

#include <string>

namespace kalim::cli {

struct InfoOptions {
    // "-" stands for standard input.
    std::string file;
};

// Runs `kalimkit info`: prints one JSON object that says what a file is. Complains on standard
// error. The exit status.
int info(const InfoOptions& options);

}  // namespace kalim::cli
