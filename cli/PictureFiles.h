#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/PictureWriting.h"
#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/PictureOrigins.h"
#include "kalimkit/host/headless/ScenarioFiles.h"

namespace kalim::cli {

// The pictures and documents of a scenario as files, named relative to the working directory. JPEG,
// PNG and WebP are read; what is written follows the name: .png, .jpg, .jpeg or .webp.
class PictureFiles : public ScenarioFiles {
public:
    // The device makes the pictures that are read, and must outlive this object.
    explicit PictureFiles(gfx::Device& device, const PictureWriting& writing = {})
        : _device(device), _writing(writing) {}

    LoadedPicture loadPicture(const std::string& path) override;
    std::optional<std::string> savePicture(const std::string& path,
                                           const gfx::ImageRef& image) override;
    // An image that came about in this way from a picture that was loaded here.
    std::optional<std::string> savePicture(const std::string& path, const gfx::ImageRef& image,
                                           const ExportedPicture& exported);
    std::optional<std::string> saveExport(const std::string& path, const gfx::ImageRef& image,
                                          const MDrawView& canvas) override;
    LoadedDocument loadDocument(const std::string& path) override;
    std::optional<std::string> saveDocument(const std::string& path, MDrawView& canvas,
                                            const DocumentSaving& saving) override;
    // "-" is standard output from now on, in the format of these first bytes of a picture, for one
    // that comes from standard input or is only worked on.
    void useStandardOutput(codec::ByteSpan start) {
        _standardFormat = pictureFormatOfBytes(start).value_or(PictureFormat::Png);
    }
    // The picture of a file that was opened, which has no document, or else its document.
    LoadedPicture takePicture(OpenedFile opened);
    LoadedDocument takeDocument(OpenedFile opened);

private:
    template <typename Encode>
    std::optional<std::string> write(const std::string& path, const Encode& encode);

    gfx::Device& _device;
    PictureWriting _writing;
    PictureOrigins _origins;
    std::optional<PictureFormat> _standardFormat;
};

}  // namespace kalim::cli
