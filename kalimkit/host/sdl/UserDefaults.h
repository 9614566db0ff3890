#pragma once

#include <map>
#include <optional>
#include <string>

namespace kalim {

// Flags that outlive the process, in a text file of lines "key=true" and "key=false". The file is
// read when a flag is first asked for, and replaced in one step when one has changed; other lines
// of it stay.
class UserDefaults {
public:
    // An empty path keeps the flags in memory alone.
    explicit UserDefaults(std::string path) : _path(std::move(path)) {}

    // $XDG_CONFIG_HOME/kalimkit/defaults, in ~/.config where that is not set; empty where there is
    // no home either.
    static std::string usualPath();

    std::optional<bool> value(const std::string& key);
    // Why the file could not be written; the flag has its new value all the same.
    std::optional<std::string> setValue(const std::string& key, bool value);

private:
    using Lines = std::map<std::string, std::string>;

    Lines readLines() const;

    std::string _path;
    // What stands before the first "=" of each line, with what stands behind it; nothing until the
    // file has been read.
    std::optional<Lines> _lines;
};

}  // namespace kalim
