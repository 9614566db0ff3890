#include "cli/EditOptionValues.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/OptionValues.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/Languages.h"
#include "kalimkit/theme/Pens.h"

namespace kalim::cli {

namespace {

// Widths are points.
constexpr double widestLine = 100;

// Words between commas or blanks, each read by `read`.
template <typename Value, typename Read>
std::string readList(const std::string& text, const char* what, std::vector<Value>& values,
                     const Read& read) {
    values.clear();
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string word(rest.substr(0, rest.find_first_of(", ")));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        if (word.empty()) continue;
        std::string problem = read(word, values.emplace_back());
        if (!problem.empty()) return problem;
    }
    return values.empty() ? std::string("must name at least ") + what : "";
}

// "a, b or c".
std::string listed(const std::vector<std::string>& names) {
    std::string list = names.front();
    for (std::size_t index = 1; index < names.size(); ++index)
        list += (index + 1 < names.size() ? ", " : " or ") + names[index];
    return list;
}

}  // namespace

std::string readFormat(const std::string& text, std::optional<PictureFormat>& format) {
    format = pictureFormat(text);
    return format ? std::string() : "must be png, jpeg or webp, not " + text;
}

std::string penNames() {
    std::vector<std::string> names;
    for (const Pen& pen : pens()) {
        if (!pen.name.empty()) names.emplace_back(pen.name);
    }
    return listed(names);
}

std::string readPen(const std::string& text, std::optional<unsigned>& pen) {
    const auto found = std::ranges::find(pens(), std::string_view(text), &Pen::name);
    if (text.empty() || found == pens().end()) return "must be " + penNames() + ", not " + text;
    pen = found->number;
    return {};
}

std::string readLineWidth(const std::string& text, std::optional<double>& width) {
    width = parseNumber(text);
    if (width && *width >= 1 && *width <= widestLine) return {};
    return "must be a number of points from 1 to 100, not " + text;
}

std::string readColor(const std::string& text, gfx::ColorRef& color) {
    const bool isColor = text.size() == 7 && text.front() == '#' &&
                         text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
    if (!isColor) return "must be a colour like #F63434, not " + text;
    color = colorWithHexString(text);
    return {};
}

std::string readLanguage(const std::string& text, std::string& language) {
    const std::vector<std::string> given = Languages::given();
    const std::string_view plain = std::string_view(text).substr(0, text.find_first_of("-_.@"));
    if (text != "auto" && std::ranges::find(given, plain) == given.end())
        return "must be auto, " + listed(given) + ", not " + text;
    language = text == "auto" ? "" : text;
    return {};
}

std::string readTheme(const std::string& text, EditOptions::Theme& theme) {
    using enum EditOptions::Theme;
    static constexpr std::pair<std::string_view, EditOptions::Theme> themes[] = {
        {"auto", Auto}, {"light", Light}, {"dark", Dark}, {"contrast", Contrast}};
    for (const auto& [name, value] : themes) {
        if (text != name) continue;
        theme = value;
        return {};
    }
    return "must be auto, light, dark or contrast, not " + text;
}

std::string readPens(const std::string& text, std::vector<std::string>& pens) {
    return readList(text, "a pen", pens, [](const std::string& word, std::string& name) {
        std::optional<unsigned> number;
        name = word;
        return word == "crop" ? std::string() : readPen(word, number);
    });
}

std::string readColors(const std::string& text, std::vector<gfx::ColorRef>& colors) {
    return readList(text, "a colour", colors, readColor);
}

std::string readWidths(const std::string& text, std::vector<double>& widths) {
    return readList(text, "a width", widths, [](const std::string& word, double& width) {
        std::optional<double> number;
        const std::string problem = readLineWidth(word, number);
        width = number.value_or(0);
        return problem;
    });
}

std::string readActions(const std::string& text,
                        std::optional<std::vector<EditOptions::Action>>& actions) {
    using enum EditOptions::Action;
    actions.emplace();
    return readList(
        text, "an action", *actions, [](const std::string& word, EditOptions::Action& action) {
            action = word == "save-to-file"        ? SaveToFile
                     : word == "save-to-clipboard" ? SaveToClipboard
                                                   : Exit;
            const bool isKnown = action != Exit || word == "exit";
            return isKnown ? std::string()
                           : "must be save-to-file, save-to-clipboard or exit, not " + word;
        });
}

}  // namespace kalim::cli
