#pragma once

#include <memory>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/environment/PhotoLibrary.h"

namespace kalim {

// Albums by name, over what a photo library offers. The library is held until all has been said;
// its errors are passed on unchanged.

// Writes a photo, then files it.
KALIM_API void writeImageToAlbumCompletionHandler(const std::shared_ptr<ui::PhotoLibrary>& library,
                                                  const gfx::ImageRef& image,
                                                  const std::string& album,
                                                  const ui::PhotoLibrary::Written& completion);

// Files a photo that is in the library, in an album that is made if need be.
KALIM_API void addAssetURLToAlbumCompletionHandler(const std::shared_ptr<ui::PhotoLibrary>& library,
                                                   const std::string& address,
                                                   const std::string& album,
                                                   const ui::PhotoLibrary::Done& completion);

}  // namespace kalim
