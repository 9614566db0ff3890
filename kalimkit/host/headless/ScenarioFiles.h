#pragma once

#include <optional>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// Where the pictures of a scenario come from and go to. A player's maker supplies it: a program
// reads files, a test hands out pictures of its own.
class KALIM_API ScenarioFiles {
public:
    // A picture, or one sentence for the user that names the path and says why there is none.
    struct LoadedPicture {
        gfx::ImageRef image;
        std::string error;
    };

    virtual ~ScenarioFiles() = default;

    virtual LoadedPicture loadPicture(const std::string& path) = 0;
    // Answers with nothing on success, else with a sentence of the same kind.
    virtual std::optional<std::string> savePicture(const std::string& path,
                                                   const gfx::ImageRef& image) = 0;
};

}  // namespace kalim
