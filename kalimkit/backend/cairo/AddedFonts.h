#pragma once

#include <fontconfig/fontconfig.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

// Fonts that a host handed over, beside those that the system has. Their files are in memory alone.
class AddedFonts {
public:
    AddedFonts() = default;
    ~AddedFonts();
    AddedFonts(const AddedFonts&) = delete;
    AddedFonts& operator=(const AddedFonts&) = delete;

    AddedFont add(const std::vector<std::uint8_t>& file);
    bool isEmpty() const { return _families.empty(); }
    // Each once, in the order in which they came, as the configuration has them: a face that the
    // system has of a family of the same name is another one.
    const std::vector<std::string>& families() const { return _families; }
    // How the configuration calls a family.
    std::string named(const std::string& family) const;
    // Knows the system's fonts and these; null before the first.
    FcConfig* config() const { return _config.get(); }

private:
    struct ConfigRelease {
        void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    };

    std::unique_ptr<FcConfig, ConfigRelease> _config;
    // Open as long as a font library may look into them.
    std::vector<int> _files;
    std::vector<std::string> _families;
};

}  // namespace kalim::gfx
