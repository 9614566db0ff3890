#include "cli/ConfigFile.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <system_error>

#include "cli/Complaint.h"
#include "cli/EditSettings.h"
#include "cli/StandardOutput.h"
#include "kalimkit/codec/Files.h"

namespace kalim::cli {

namespace {

// More than anybody writes down.
constexpr std::uint64_t longestFile = 1 << 20;

std::string literalOf(const toml::node& node) {
    std::ostringstream text;
    text << toml::toml_formatter(node);
    return text.str();
}

// A text without its quotes, a number or a switch as it is; nothing for anything else.
std::optional<std::string> scalarText(const toml::node& node) {
    if (const auto* const text = node.as_string()) return text->get();
    if (const auto* const flag = node.as_boolean()) return flag->get() ? "true" : "false";
    if (const auto* const whole = node.as_integer()) return std::to_string(whole->get());
    if (const auto* const number = node.as_floating_point()) return literalOf(*number);
    return std::nullopt;
}

std::optional<std::string> textOf(const toml::node& node) {
    const toml::array* const list = node.as_array();
    if (!list) return scalarText(node);
    std::string joined;
    for (const toml::node& each : *list) {
        const auto text = scalarText(each);
        if (!text) return std::nullopt;
        joined += (joined.empty() ? "" : ",") + *text;
    }
    return joined;
}

std::vector<std::string> keys() {
    std::vector<std::string> names;
    for (const EditSetting& setting : editSettings())
        names.emplace_back(setting.key);
    return names;
}

}  // namespace

std::string ConfigFile::usualPath() {
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    // A relative one is invalid by the convention that names it.
    if (config && *config == '/') return std::string(config) + "/kalimkit/config.toml";
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? std::string(home) + "/.config/kalimkit/config.toml" : "";
}

ConfigFile::ConfigFile(std::string path) : _path(std::move(path)) {
    std::error_code error;
    _isThere = !_path.empty() && std::filesystem::exists(_path, error);
    if (!_isThere) return;
    codec::Bytes bytes;
    if (const auto problem = codec::readFile(_path, bytes, longestFile)) {
        _problems.push_back(*problem);
        return;
    }
    parse({bytes.begin(), bytes.end()});
}

void ConfigFile::parse(const std::string& text) {
    try {
        const toml::table table = toml::parse(text, _path);
        // Told in the order of the file, which the table does not keep.
        std::vector<std::pair<std::string, const toml::node*>> nodes;
        for (const auto& [key, node] : table)
            nodes.emplace_back(key.str(), &node);
        std::ranges::sort(nodes, {},
                          [](const auto& each) { return each.second->source().begin.line; });
        for (const auto& [name, each] : nodes) {
            const toml::node& node = *each;
            const int line = static_cast<int>(node.source().begin.line);
            const auto value = textOf(node);
            if (!value && editSetting(name)) {
                _problems.push_back(place(line) + name +
                                    ": must be a text, a number, true or false, "
                                    "or a list of such");
                continue;
            }
            check({name, value.value_or(""), value ? literalOf(node) : "", line});
        }
    } catch (const toml::parse_error& error) {
        _problems.push_back(place(static_cast<int>(error.source().begin.line)) +
                            std::string(error.description()));
    }
}

void ConfigFile::check(const Entry& entry) {
    const EditSetting* const setting = editSetting(entry.key);
    std::string problem;
    if (!setting) {
        const std::string near = nearestWord(entry.key, keys());
        problem = "there is no such key";
        problem +=
            near.empty() ? "; kalimkit config --show lists them" : "; did you mean " + near + "?";
    } else {
        EditOptions unused;
        problem = setting->read(entry.value, unused);
    }
    if (problem.empty()) {
        _entries.push_back(entry);
    } else {
        _problems.push_back(place(entry.line) + entry.key + ": " + problem);
    }
}

void ConfigFile::applyTo(EditOptions& options) const {
    for (const Entry& entry : _entries)
        editSetting(entry.key)->read(entry.value, options);
}

std::string ConfigFile::text() const {
    std::string text =
        "# " + (_path.empty() ? std::string("There is no home folder.") : _path) + "\n";
    for (const EditSetting& setting : editSettings()) {
        const auto entry = std::ranges::find(_entries, setting.key, &Entry::key);
        text += "\n# " + setting.description + "\n";
        if (entry != _entries.end()) {
            text += std::string(setting.key) + " = " + entry->literal + "\n";
        } else {
            text += std::string("# ") + setting.key + " = " + setting.example + "\n";
        }
    }
    return text;
}

int config(const ConfigOptions& options) {
    const ConfigFile file(options.file.empty() ? ConfigFile::usualPath() : options.file);
    if (!options.file.empty() && !file.isThere())
        return complain(options.file + ": No such file or directory");
    int status = 0;
    for (const std::string& problem : file.problems())
        status = complain(problem);
    if (status != 0) return status;
    StandardOutput output;
    if (options.isShown) {
        std::string text = file.text();
        text.pop_back();
        output.printLine(text);
    } else {
        output.printLine(file.path() + (file.isThere()
                                            ? ": nothing is wrong"
                                            : ": there is no such file, and none is needed"));
    }
    return output.error() ? complain(*output.error()) : 0;
}

}  // namespace kalim::cli
