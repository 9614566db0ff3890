#include "cli/EditSettings.h"

#include <algorithm>
#include <numeric>

#include "cli/EditOptionValues.h"
#include "cli/OptionValues.h"

namespace kalim::cli {

namespace {

// A switch's text to its flag.
template <bool EditOptions::*flag>
std::string readSwitch(const std::string& text, EditOptions& options) {
    options.*flag = text == "true";
    return text == "true" || text == "false" ? "" : "must be true or false, not " + text;
}

template <auto member, auto reader>
std::string readWith(const std::string& text, EditOptions& options) {
    return reader(text, options.*member);
}

std::string readOutput(const std::string& text, EditOptions& options) {
    options.output = text;
    return text.empty() ? "must be a name, a pattern for one, or -" : "";
}

std::string readVerbose(const std::string& text, EditOptions& options) {
    options.writing.isVerbose = text == "true";
    return text == "true" || text == "false" ? "" : "must be true or false, not " + text;
}

// What the command line has options of its own for.
std::string readRecovery(const std::string& text, EditOptions& options) {
    using enum EditOptions::Recovery;
    if (text != "ask" && text != "go-on" && text != "off")
        return "must be ask, go-on or off, not " + text;
    options.recovery = text == "ask" ? Ask : text == "off" ? Off : GoOn;
    return {};
}

std::vector<EditSetting> makeSettings() {
    return {
        {"output", 'o', "OUT", "\"~/Pictures/%Y-%m-%d_%H%M%S.png\"",
         "The file to write, - for standard output; %Y-%m-%d and the like become the time, and ~ "
         "the "
         "home folder; without it a new name beside the photo",
         readOutput},
        {"format", 'f', "FORMAT", "\"png\"", "png, jpeg or webp, whatever OUT is called",
         readWith<&EditOptions::format, readFormat>},
        {"quality", 0, "N", "90",
         "1 to 100, of a JPEG or WebP picture (that of the photo, else 90)",
         [](const std::string& text, EditOptions& options) {
             return readQuality(text, options.writing.quality);
         }},
        {"metadata", 0, "safe|keep|none", "\"safe\"",
         "What the written picture says beside its pixels (safe)",
         [](const std::string& text, EditOptions& options) {
             return readMetadata(text, options.writing.metadata);
         }},
        {"verbose", 0, nullptr, "false", "Say on standard error what had to be encoded anew",
         readVerbose},
        {"layout", 0, "auto|phone|desk", "\"auto\"",
         "The bars of a phone, of wide screens, or as it fits (auto)",
         readWith<&EditOptions::layout, readLayout>},
        {"language", 0, "LANG", "\"auto\"",
         "What the window's texts are in, such as de; auto is as the locale says (auto)",
         readWith<&EditOptions::language, readLanguage>, "lang"},
        {"theme", 0, "auto|light|dark|contrast", "\"auto\"",
         "The colours of the desk; auto follows the system (auto)",
         readWith<&EditOptions::theme, readTheme>},
        {"scale", 0, "K", "1", "Pixels of the screen per point, 0.5 to 8 (as the system says)",
         readWith<&EditOptions::scale, readScale>},
        {"initial-tool", 0, "TOOL", "\"arrow\"", penNames(), readWith<&EditOptions::pen, readPen>},
        {"width", 0, "WIDTH", "7",
         "The width of lines at first, in thousandths of the photo's longer side",
         readWith<&EditOptions::lineWidth, readLineWidth>},
        {"color", 0, "#RRGGBB", "\"#F63434\"", "The colour at first",
         readWith<&EditOptions::color, readColor>},
        {"pens", 0, "PEN,...", "[\"arrow\", \"text\", \"mosaic\", \"crop\"]",
         "The pens that are shown, in this order", readWith<&EditOptions::pens, readPens>},
        {"colors", 0, "#RRGGBB,...", "[\"#F63434\", \"#1AA9FF\"]",
         "The colours that are shown, in this order", readWith<&EditOptions::colors, readColors>},
        {"widths", 0, "WIDTH,...", "[2, 7, 12, 18, 28]",
         "The widths of lines that are shown, from thin to thick",
         readWith<&EditOptions::widths, readWidths>},
        {"screen-size", 0, nullptr, "false",
         "Write the picture as large as it is on the screen, not as the photo is",
         readSwitch<&EditOptions::isScreenSize>},
        {"grow", 0, nullptr, "false",
         "Let what is drawn beyond the photo's edge enlarge the picture",
         readSwitch<&EditOptions::grows>},
        {"copy", 0, nullptr, "false",
         "Copy the picture to the clipboard when it is sent; without -o it goes nowhere else",
         readSwitch<&EditOptions::copies>},
        {"early-exit", 0, nullptr, "false", "End once the picture was first copied or saved",
         readSwitch<&EditOptions::endsEarly>},
        {"actions-on-enter", 0, "ACTION,...", "[\"save-to-file\", \"exit\"]",
         "What Enter does instead of sending: save-to-file, save-to-clipboard, exit",
         readWith<&EditOptions::onEnter, readActions>},
        {"actions-on-escape", 0, "ACTION,...", "[\"exit\"]",
         "The same of Escape, where it would close the window",
         readWith<&EditOptions::onEscape, readActions>},
        {"recovery", 0, "ask|go-on|off", "\"ask\"",
         "What becomes of unfinished work: off also records none", readRecovery},
    };
}

// How many letters have to be put in, left out or exchanged.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t exchanged = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

}  // namespace

const std::vector<EditSetting>& editSettings() {
    static const std::vector<EditSetting> settings = makeSettings();
    return settings;
}

const EditSetting* editSetting(std::string_view key) {
    const auto& settings = editSettings();
    const auto found = std::ranges::find(settings, key, &EditSetting::key);
    return found == settings.end() ? nullptr : &*found;
}

std::string nearestWord(std::string_view word, const std::vector<std::string>& words) {
    const auto found = std::ranges::min_element(
        words, {}, [word](const std::string& each) { return distance(word, each); });
    const std::size_t most = std::max<std::size_t>(1, word.size() / 3);
    const bool isNear = found != words.end() && distance(word, *found) <= most;
    return isNear ? *found : std::string();
}

}  // namespace kalim::cli
