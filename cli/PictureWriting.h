#pragma once

#include <optional>
#include <string>

#include "cli/PictureFormat.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::cli {

// What every command that writes pictures is told about them.
struct PictureWriting {
    codec::Metadata metadata = codec::Metadata::Safe;
    // 1 to 100, of a lossy format; nothing for that of the file, or the usual one.
    std::optional<int> quality;
    // A line on standard error says what had to be encoded anew.
    bool isVerbose = false;
};

// "safe", "keep" or "none"; answers with nothing or with what is wrong.
std::string readMetadata(const std::string& text, codec::Metadata& metadata);

// "1" to "100"; answers as the above.
std::string readQuality(const std::string& text, std::optional<int>& quality);

codec::SavingOptions savingOptions(const PictureWriting& writing, PictureFormat format);

// Says what was encoded anew, where something was and the user wants to hear of it. An empty path
// and "-" stand for standard output.
void tellOf(const codec::SavedPicture& saved, const PictureWriting& writing,
            const std::string& path);

}  // namespace kalim::cli
