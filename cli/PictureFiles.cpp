#include "cli/PictureFiles.h"

#include <utility>

#include "cli/Opening.h"
#include "cli/PictureFormat.h"
#include "cli/StandardOutput.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/Sandbox.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/SavedDocument.h"

namespace kalim::cli {

namespace {

constexpr const char* noRoom = "there is no room for a picture of this size";

}  // namespace

ScenarioFiles::LoadedPicture PictureFiles::loadPicture(const std::string& path) {
    codec::Bytes bytes;
    if (auto problem = codec::readPictureFile(path, bytes)) return {nullptr, *problem};
    codec::DecodeResult decoded = codec::decodeSandboxed(bytes, path);
    if (decoded.error) return {nullptr, *decoded.error};
    gfx::ImageRef image = _origins.make(_device, std::move(decoded), bytes, path);
    if (!image) return {nullptr, path + ": " + noRoom};
    return {image, {}};
}

ScenarioFiles::LoadedPicture PictureFiles::takePicture(OpenedFile opened) {
    gfx::ImageRef image = _origins.make(_device, opened);
    if (!image) return {nullptr, opened.picturePath + ": " + noRoom};
    return {image, {}};
}

ScenarioFiles::LoadedDocument PictureFiles::takeDocument(OpenedFile opened) {
    LoadedDocument loaded;
    loaded.picture = _origins.make(_device, opened);
    loaded.document = std::move(*opened.document);
    if (loaded.document.picture && !loaded.picture) loaded.error = noRoom;
    return loaded;
}

ScenarioFiles::LoadedDocument PictureFiles::loadDocument(const std::string& path) {
    OpenedFile opened = openFile(path, sandboxed());
    LoadedDocument loaded;
    loaded.error = std::move(opened.error);
    if (loaded.error) return loaded;
    if (!opened.document) {
        loaded.error = path + ": this is a picture without a document inside";
        return loaded;
    }
    loaded = takeDocument(std::move(opened));
    if (loaded.error) loaded.error = path + ": " + *loaded.error;
    return loaded;
}

std::optional<std::string> PictureFiles::saveDocument(const std::string& path, MDrawView& canvas,
                                                      const DocumentSaving& saving) {
    return kalim::saveDocument(canvas, _origins,
                               {saving.isSealed, saving.isLinked, _writing.metadata, true}, path);
}

std::optional<std::string> PictureFiles::savePicture(const std::string& path,
                                                     const gfx::ImageRef& image) {
    return savePicture(path, image, {});
}

std::optional<std::string> PictureFiles::savePicture(const std::string& path,
                                                     const gfx::ImageRef& image,
                                                     const ExportedPicture& exported) {
    return write(path, [&](const codec::SavingOptions& options) {
        return encodePicture(*image, exported, _origins, options);
    });
}

std::optional<std::string> PictureFiles::saveExport(const std::string& path,
                                                    const gfx::ImageRef& image,
                                                    const MDrawView& canvas) {
    return write(path, [&](codec::SavingOptions options) {
        // What a scenario sees on its screen does not depend on the photo's profile.
        options.takesAfterFile = false;
        return encodeExport(image, canvas, _origins, options);
    });
}

template <typename Encode>
std::optional<std::string> PictureFiles::write(const std::string& path, const Encode& encode) {
    const bool isStandard = path == "-" && _standardFormat;
    const auto format = isStandard ? _standardFormat : pictureFormatOfPath(path);
    if (!format) return path + ": pictures are written as " + pictureEndings;
    const codec::SavedPicture saved = encode(savingOptions(_writing, *format));
    if (saved.error) return path + ": " + *saved.error;
    std::optional<std::string> problem;
    if (isStandard) {
        StandardOutput output;
        output.write(saved.bytes);
        problem = output.error();
    } else {
        problem = codec::writeFileAtomically(path, saved.bytes);
    }
    if (!problem) tellOf(saved, _writing, path);
    return problem;
}

}  // namespace kalim::cli
