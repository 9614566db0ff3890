#pragma once

#include <string>

#include "cli/PictureFormat.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::cli {

// What every command that writes pictures is told about them.
struct PictureWriting {
    codec::Metadata metadata = codec::Metadata::Safe;
    // A line on standard error says what had to be encoded anew.
    bool isVerbose = false;
};

// "safe", "keep" or "none"; answers with nothing or with what is wrong.
std::string readMetadata(const std::string& text, codec::Metadata& metadata);

codec::SavingOptions savingOptions(const PictureWriting& writing, PictureFormat format);

// Says what was encoded anew, where something was and the user wants to hear of it. An empty path
// and "-" stand for standard output.
void tellOf(const codec::SavedPicture& saved, const PictureWriting& writing,
            const std::string& path);

}  // namespace kalim::cli
