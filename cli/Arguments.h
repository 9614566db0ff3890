#pragma once

#include <string>
#include <vector>

namespace kalim::cli {

// The words of the command line, and what they mean where no command is named: a file, with options
// before it or not, is to be edited.
class Arguments {
public:
    Arguments(int argc, char** argv);

    // Without the program's name, and with the command that was left out.
    const std::vector<std::string>& words() const { return _words; }
    bool isEdit() const { return !_words.empty() && _words.front() == "edit"; }
    // What to say besides where the words cannot be understood: that there is a file, too, which is
    // called as a command is. Empty where nothing is.
    std::string hint() const;

private:
    bool lacksCommand() const;

    std::vector<std::string> _words;
};

}  // namespace kalim::cli
