#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::ui {

// Why the photo library did not do what it was asked for.
struct PhotoLibraryError {
    // The host words it for the user.
    std::string message;

    bool operator==(const PhotoLibraryError&) const = default;
};

// The device's photo library: photos, known by addresses of the host's, and albums, known by their
// names, that list some of them. Answers may come at once or later, from the main queue; each comes
// exactly once, if the library is held until then. An error is nothing where all went well.
class KALIM_API PhotoLibrary {
public:
    using Error = std::optional<PhotoLibraryError>;
    using Written = std::function<void(const std::string& address, const Error& error)>;
    using Listed = std::function<void(const std::vector<std::string>& albums, const Error& error)>;
    using Done = std::function<void(const Error& error)>;

    virtual ~PhotoLibrary() = default;

    // Adds a photo, of the image's raster with its orientation. The address is empty after an
    // error.
    virtual void writeImage(const gfx::ImageRef& image, const Written& written) = 0;
    virtual void listAlbums(const Listed& listed) = 0;
    // A name that there is already is an error.
    virtual void addAlbum(const std::string& name, const Done& done) = 0;
    // An address or a name that there is none of is an error.
    virtual void addToAlbum(const std::string& address, const std::string& album,
                            const Done& done) = 0;
};

}  // namespace kalim::ui
