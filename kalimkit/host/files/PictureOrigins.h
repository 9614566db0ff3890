#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/DecodeResult.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/host/files/OpenedFile.h"

namespace kalim {

// Which file a picture came from, so that a document can hold the file's own bytes. Pictures are
// known by identity, and forgotten with their last owner.
class KALIM_API PictureOrigins {
public:
    struct Origin {
        std::string mediaType;
        // The file's bytes.
        std::string data;
        // Where it lies; empty for one that is not in a file of its own.
        std::string path;
    };

    // The picture of a file that was opened, or of its document, which then no longer holds the
    // bytes; as below. Null for a document without one as well.
    gfx::ImageRef make(gfx::Device& device, OpenedFile& opened);
    // The upright picture of a decoded file, one pixel a point, which is remembered; null where
    // there is no room for it.
    gfx::ImageRef make(gfx::Device& device, codec::DecodeResult decoded, codec::ByteSpan file,
                       const std::string& path);
    // Null for a picture that came from no file, as what a crop has left.
    std::shared_ptr<const Origin> find(const gfx::ImageRef& image) const;

private:
    struct Entry {
        std::weak_ptr<const gfx::Image> image;
        std::shared_ptr<const Origin> origin;
    };
    std::vector<Entry> _entries;
};

}  // namespace kalim
