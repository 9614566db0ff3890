#pragma once

#include <string>

namespace kalim::cli {

struct WorksOptions {
    // The id of a work to remove, or "all"; empty lists them.
    std::string forgotten;
    bool isJson = false;
};

// Runs `kalimkit works`: lists the works that can be gone on with, or removes them. Complains on
// standard error. The exit status.
int works(const WorksOptions& options);

}  // namespace kalim::cli
