#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Edit.h"

namespace kalim::cli {

// Something that users choose of `kalimkit edit`, on its command line or, for every time, in the
// configuration file.
struct EditSetting {
    // "--key" on the command line and "key" in the file; on the former one letter may stand for it.
    const char* key;
    char letter = 0;
    // What stands for its value in the help; null for a switch, whose value is "true" or "false".
    const char* type;
    // What the file may say: what holds unless told, where that can be said.
    const char* example;
    std::string description;
    // Answers with nothing, or with what is wrong with the text. Of a list the file's texts arrive
    // with commas between them.
    std::string (*read)(const std::string& text, EditOptions& options);
    // Another name on the command line; null for none.
    const char* alias = nullptr;
};

const std::vector<EditSetting>& editSettings();
// Null for a key that is none.
const EditSetting* editSetting(std::string_view key);

// The word of a list that somebody may have meant by another one; empty where none is near.
std::string nearestWord(std::string_view word, const std::vector<std::string>& words);

}  // namespace kalim::cli
