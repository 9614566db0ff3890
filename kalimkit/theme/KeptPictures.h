#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/theme/IconTable.h"

namespace kalim {

// What this room has made with the current environment's device; it goes with the environment.
class KeptPictures {
public:
    static KeptPictures& current();

    // Drawn when it is first asked for at a scale.
    gfx::ImageRef iconImage(const Icon& icon, double scale);
    gfx::ImageRef highlightBackground();

    // Answers with null for a picture of another origin.
    const Icon* iconShownBy(const gfx::ImageRef& image) const;
    // Remembers that the copy shows the icon, if any, that the original shows.
    void noteCopy(const gfx::ImageRef& copy, const gfx::ImageRef& original);

private:
    struct Drawn {
        const Icon* icon;
        double scale;
        gfx::ImageRef image;
    };
    struct Copy {
        const Icon* icon;
        std::weak_ptr<const gfx::Image> image;
    };

    std::vector<Drawn> _drawn;
    std::vector<Copy> _copies;
    gfx::ImageRef _highlightBackground;
};

}  // namespace kalim
