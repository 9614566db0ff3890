#include "kalimkit/theme/FrameworkImages.h"

#include <algorithm>

#include "kalimkit/theme/IconTable.h"
#include "kalimkit/theme/KeptPictures.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

gfx::ImageRef imageNamedForFramework(const std::string& name) {
    const std::span<const Icon> icons = frameworkIcons();
    const auto found = std::ranges::find(icons, name, &Icon::name);
    if (found == icons.end()) return nullptr;
    const double scale = ui::Environment::current().screen().scale;
    return KeptPictures::current().iconImage(*found, scale);
}

std::string frameworkImageName(const gfx::ImageRef& image) {
    const Icon* const icon = KeptPictures::current().iconShownBy(image);
    return icon ? std::string(icon->name) : std::string();
}

}  // namespace kalim
