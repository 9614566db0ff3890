#pragma once

#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/host/files/PictureOrigins.h"

namespace kalim {

class MDrawView;

// A whole file of an image that came about in this way: what nothing covers stays what it is in
// the file that the source came from, and that file's data go along. An empty part stands for an
// image that is not at the source's scale, no source for one that came from nowhere.
KALIM_API codec::SavedPicture encodePicture(const gfx::Image& image,
                                            const ExportedPicture& exported,
                                            const PictureOrigins& origins,
                                            const codec::SavingOptions& options);

// The same of what a canvas has just handed out, at whatever scale.
KALIM_API codec::SavedPicture encodeExport(const gfx::ImageRef& image, const MDrawView& canvas,
                                           const PictureOrigins& origins,
                                           const codec::SavingOptions& options);

}  // namespace kalim
