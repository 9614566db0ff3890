#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kalim {

// Flags and texts that outlive the process, in a text file of lines "key=true" and "key=text",
// where "\n" stands for the end of a line and "\\" for a backslash. The file is read when a key is
// first asked for, and replaced in one step when one has changed; other lines of it stay, and one
// that cannot be read stays as it is.
class UserDefaults {
public:
    // An empty path keeps the values in memory alone.
    explicit UserDefaults(std::string path) : _path(std::move(path)) {}

    // $XDG_CONFIG_HOME/kalimkit/defaults, in ~/.config where that is not set; empty where there is
    // no home either.
    static std::string usualPath();

    // Nothing for a text, and for a key that is not there.
    std::optional<bool> value(const std::string& key);
    // Why the file could not be written; the flag has its new value all the same.
    std::optional<std::string> setValue(const std::string& key, bool value);

    std::optional<std::string> text(const std::string& key);
    // Several are written in one go. As above.
    std::optional<std::string> setTexts(const std::map<std::string, std::string>& texts);

private:
    // Why there is a file that cannot be read; the lines are none then.
    std::optional<std::string> readLines();
    // The line of a flag; null where there is none.
    std::string* lineOf(const std::string& key);

    std::string _path;
    bool _isRead = false;
    std::vector<std::string> _lines;
};

}  // namespace kalim
