#pragma once

#include <string>
#include <vector>

#include "cli/Edit.h"

namespace kalim::cli {

// What a user has chosen for every `kalimkit edit`: a file of TOML with the keys of editSettings().
class ConfigFile {
public:
    // $XDG_CONFIG_HOME/kalimkit/config.toml, in ~/.config where that is not set; empty where there
    // is no home either.
    static std::string usualPath();

    // Reads a file; one that is not there says nothing.
    explicit ConfigFile(std::string path);

    const std::string& path() const { return _path; }
    bool isThere() const { return _isThere; }
    // One sentence each that names the file, the line and the key.
    const std::vector<std::string>& problems() const { return _problems; }
    // Takes over what the file says and is right.
    void applyTo(EditOptions& options) const;
    // All keys with what the file says of them; the others as comments with what holds without.
    std::string text() const;

private:
    struct Entry {
        std::string key;
        // As the option of the command line takes it, and as it stands in the file.
        std::string value;
        std::string literal;
        int line = 0;
    };
    void parse(const std::string& text);
    void check(const Entry& entry);
    std::string place(int line) const { return _path + ":" + std::to_string(line) + ": "; }

    std::string _path;
    bool _isThere = false;
    std::vector<Entry> _entries;
    std::vector<std::string> _problems;
};

struct ConfigOptions {
    // Empty for the user's own.
    std::string file;
    bool isShown = false;
    // What happens without being asked for as well.
    bool isChecked = false;
};

// Runs `kalimkit config`: checks the file, or shows what it says. The exit status.
int config(const ConfigOptions& options);

}  // namespace kalim::cli
