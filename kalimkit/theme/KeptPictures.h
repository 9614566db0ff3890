#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/theme/IconTable.h"

namespace kalim {

// What this room has made with the current environment's device; it goes with the environment.
class KeptPictures {
public:
    static KeptPictures& current();

    // Drawn when it is first asked for by a name at a scale: in the middle of the size in points,
    // in its own size where that is zero; mirrored where it says so.
    gfx::ImageRef iconImage(std::string_view name, const Icon& icon, double scale, gfx::Size size,
                            bool isMirrored);
    gfx::ImageRef highlightBackground();

    // By which an icon was asked for; empty for a picture of another origin.
    std::string nameOf(const gfx::ImageRef& image) const;
    // Remembers that the copy shows the icon, if any, that the original shows.
    void noteCopy(const gfx::ImageRef& copy, const gfx::ImageRef& original);

private:
    struct Drawn {
        std::string name;
        double scale;
        bool isMirrored;
        gfx::ImageRef image;
    };
    struct Copy {
        std::string name;
        std::weak_ptr<const gfx::Image> image;
    };

    std::vector<Drawn> _drawn;
    std::vector<Copy> _copies;
    gfx::ImageRef _highlightBackground;
};

}  // namespace kalim
