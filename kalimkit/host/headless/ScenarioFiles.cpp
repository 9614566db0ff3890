#include "kalimkit/host/headless/ScenarioFiles.h"

namespace kalim {

namespace {

constexpr const char* noDocuments = ": documents are not to be had here";

}  // namespace

std::optional<std::string> ScenarioFiles::saveExport(const std::string& path,
                                                     const gfx::ImageRef& image,
                                                     const MDrawView& /*canvas*/) {
    return savePicture(path, image);
}

ScenarioFiles::LoadedDocument ScenarioFiles::loadDocument(const std::string& path) {
    LoadedDocument loaded;
    loaded.error = path + noDocuments;
    return loaded;
}

std::optional<std::string> ScenarioFiles::saveDocument(const std::string& path,
                                                       MDrawView& /*canvas*/,
                                                       const DocumentSaving& /*saving*/) {
    return path + noDocuments;
}

}  // namespace kalim
