#include "cli/Arguments.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kalim::cli {

namespace {

constexpr std::array<std::string_view, 8> commands{"play", "image",  "edit",   "config",
                                                   "info", "redact", "render", "works"};

bool isCommand(const std::string& word) {
    return std::ranges::find(commands, word) != commands.end();
}

bool isThere(const std::string& word) {
    std::error_code error;
    return word == "-" || std::filesystem::exists(word, error);
}

// A file that is named, be it there or not. What only might be one is rather a command misspelt.
bool isFile(const std::string& word) {
    const bool isOption = word.size() > 1 && word.front() == '-';
    return !isOption && (isThere(word) || word.find_first_of("./") != std::string::npos);
}

}  // namespace

Arguments::Arguments(int argc, char** argv) : _words(argv + std::min(argc, 1), argv + argc) {
    if (lacksCommand()) _words.insert(_words.begin(), "edit");
}

bool Arguments::lacksCommand() const {
    if (_words.empty() || isCommand(_words.front())) return false;
    if (isFile(_words.front())) return true;
    const bool isOption = _words.front().starts_with("-");
    // The value of an option may be called as anything is, so a file has to be there.
    return isOption && std::ranges::none_of(_words, isCommand) &&
           std::ranges::any_of(_words, isThere);
}

std::string Arguments::hint() const {
    if (_words.empty() || !isCommand(_words.front()) || !isThere(_words.front())) return {};
    const std::string& name = _words.front();
    return "; " + name + " is a command; the file of that name is opened by kalimkit edit " + name;
}

}  // namespace kalim::cli
