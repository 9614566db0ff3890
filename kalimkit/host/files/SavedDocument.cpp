#include "kalimkit/host/files/SavedDocument.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <system_error>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/SealedDocument.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/files/EncodedPicture.h"

namespace kalim {

namespace {

namespace fs = std::filesystem;

constexpr int sealedQuality = 95;
constexpr const char* png = "image/png";
constexpr const char* jpeg = "image/jpeg";

void takeBytes(DocumentPicture& picture, std::string mediaType, std::string data) {
    picture.mediaType = std::move(mediaType);
    picture.sha256 = sha256(data);
    picture.data = std::move(data);
    picture.file.clear();
}

std::optional<std::string> takeFile(DocumentPicture& picture, const char* mediaType,
                                    const codec::SavedPicture& saved) {
    if (!saved.error)
        takeBytes(picture, mediaType, std::string(saved.bytes.begin(), saved.bytes.end()));
    return saved.error;
}

// The path from the folder to a file that lies in it or below; nothing for another.
std::optional<std::string> pathFrom(const std::string& folder, const std::string& file) {
    std::error_code error;
    const fs::path path(file);
    const fs::path above = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const fs::path place = fs::canonical(above, error) / path.filename();
    if (error) return std::nullopt;
    const fs::path way = place.lexically_relative(fs::canonical(folder, error));
    if (error || way.empty() || *way.begin() == "..") return std::nullopt;
    return way.generic_string();
}

// Another program may have written the file since, and this one, too.
std::optional<std::string> link(DocumentPicture& picture, const PictureOrigins::Origin* origin,
                                const std::string& folder) {
    if (!origin || origin->path.empty())
        return "there is no file of the picture that it could be linked to";
    const auto way = pathFrom(folder, origin->path);
    if (!way) {
        return "a picture is linked only below the document's folder, where " + origin->path +
               " is not";
    }
    codec::Bytes bytes;
    if (auto problem = codec::readFile(origin->path, bytes)) return problem;
    takeBytes(picture, origin->mediaType, origin->data);
    if (!std::ranges::equal(bytes, picture.data, {}, {},
                            [](char letter) { return static_cast<std::uint8_t>(letter); })) {
        return origin->path + " is no longer the file that was opened";
    }
    picture.data.clear();
    picture.file = *way;
    return std::nullopt;
}

std::optional<std::string> fill(Document& document, const gfx::ImageRef& source,
                                const PictureOrigins::Origin* origin, bool isLinked,
                                const std::string& folder) {
    if (!document.picture) {
        return isLinked ? std::optional<std::string>("there is no picture to link to")
                        : std::nullopt;
    }
    if (isLinked) return link(*document.picture, origin, folder);
    if (!origin)
        return takeFile(*document.picture, png, codec::savePicture(*source->pixels(), {}, {}));
    takeBytes(*document.picture, origin->mediaType, origin->data);
    return std::nullopt;
}

// A picture of another format becomes a JPEG, for which its own quality says nothing.
std::optional<std::string> seal(MDrawView& canvas, const PictureOrigins& origins,
                                const DocumentSaving& saving, Document& document) {
    const auto origin = origins.find(canvas.sourceImage());
    SealedDocument sealed = canvas.sealedDocument();
    document = std::move(sealed.document);
    if (!document.picture) return std::nullopt;
    if (!sealed.picture) return "there is no room for its picture";
    const bool isPng = !origin || origin->mediaType == png;
    const codec::SavingOptions options{
        isPng ? codec::FileFormat::Png : codec::FileFormat::Jpeg,
        isPng || origin->mediaType == jpeg ? std::nullopt : std::optional(sealedQuality),
        saving.metadata, saving.isSandboxed};
    return takeFile(*document.picture, isPng ? png : jpeg,
                    encodePicture(*sealed.picture, sealed.exported, origins, options));
}

}  // namespace

bool isLinkable(const std::string& picture, const std::string& folder) {
    return pathFrom(folder.empty() ? "." : folder, picture).has_value();
}

std::optional<std::string> documentTextOf(MDrawView& canvas, const PictureOrigins& origins,
                                          const DocumentSaving& saving, const std::string& folder,
                                          std::string& text) {
    if (saving.isSealed && saving.isLinked)
        return "a sealed document holds its picture and cannot be linked to it";
    const gfx::ImageRef source = canvas.sourceImage();
    const auto origin = origins.find(source);
    Document document;
    std::optional<std::string> problem;
    if (saving.isSealed) {
        problem = seal(canvas, origins, saving, document);
    } else {
        document = canvas.document();
        problem = fill(document, source, origin.get(), saving.isLinked, folder);
    }
    if (!problem) text = documentText(document);
    return problem;
}

std::optional<std::string> saveDocument(MDrawView& canvas, const PictureOrigins& origins,
                                        const DocumentSaving& saving, const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    std::string text;
    const auto problem =
        documentTextOf(canvas, origins, saving, folder.empty() ? "." : folder, text);
    if (problem) return path + ": " + *problem;
    return codec::writeFileAtomically(
        path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace kalim
