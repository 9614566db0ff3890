#include "kalimkit/codec/Saving.h"

#include "kalimkit/codec/PictureSaver.h"

namespace kalim::codec {

SavedPicture savePicture(const gfx::Bitmap& result, const SavingSource& source,
                         const SavingOptions& options) {
    return PictureSaver(result, source, options).save();
}

}  // namespace kalim::codec
