#include "cli/PictureWriting.h"

#include <cmath>
#include <utility>

#include "cli/Complaint.h"
#include "cli/OptionValues.h"
#include "kalimkit/codec/Sandbox.h"

namespace kalim::cli {

namespace {

codec::FileFormat fileFormat(PictureFormat format) {
    switch (format) {
        case PictureFormat::Jpeg:
            return codec::FileFormat::Jpeg;
        case PictureFormat::Webp:
            return codec::FileFormat::Webp;
        case PictureFormat::Png:
            break;
    }
    return codec::FileFormat::Png;
}

// Once, however many pictures there are.
void tellOfRefusal() {
    static bool isTold = false;
    const auto refusal = codec::Sandbox::refusal();
    if (refusal && !std::exchange(isTold, true))
        say("pictures are decoded without a process of their own: " + *refusal);
}

}  // namespace

std::string readMetadata(const std::string& text, codec::Metadata& metadata) {
    if (text == "safe") {
        metadata = codec::Metadata::Safe;
    } else if (text == "keep") {
        metadata = codec::Metadata::Keep;
    } else if (text == "none") {
        metadata = codec::Metadata::None;
    } else {
        return "must be safe, keep or none, not " + text;
    }
    return {};
}

std::string readQuality(const std::string& text, std::optional<int>& quality) {
    const auto number = parseNumber(text);
    const bool isQuality =
        number && *number >= 1 && *number <= 100 && *number == std::floor(*number);
    if (isQuality) quality = static_cast<int>(*number);
    return isQuality ? "" : "must be a whole number from 1 to 100, not " + text;
}

codec::SavingOptions savingOptions(const PictureWriting& writing, PictureFormat format) {
    return {.format = fileFormat(format),
            .quality = writing.quality,
            .metadata = writing.metadata,
            .isSandboxed = true};
}

void tellOf(const codec::SavedPicture& saved, const PictureWriting& writing,
            const std::string& path) {
    if (!writing.isVerbose) return;
    tellOfRefusal();
    if (saved.encodedAnew.empty()) return;
    const bool isStandard = path.empty() || path == "-";
    say((isStandard ? "standard output" : path) + ": encoded anew: " + saved.encodedAnew);
}

}  // namespace kalim::cli
