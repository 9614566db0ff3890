#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/PictureFormat.h"
#include "cli/Render.h"

namespace kalim::cli {

// One file that is to become a picture.
struct RenderTask {
    std::string file;
    // "-" stands for standard output.
    std::string output;
    PictureFormat format = PictureFormat::Png;
    // Why it is not even begun; empty where it is.
    std::string problem;
    // Its picture is there already.
    bool isDone = false;
};

// Where each file goes. A problem of all of them is in `problem`, and there are no tasks then.
std::vector<RenderTask> renderTasks(const RenderOptions& options, std::string& problem);

}  // namespace kalim::cli
