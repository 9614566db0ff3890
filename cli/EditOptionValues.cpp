#include "cli/EditOptionValues.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "cli/OptionValues.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/Pens.h"

namespace kalim::cli {

namespace {

// Widths are points.
constexpr double widestLine = 100;

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
    std::string list = names.front();
    for (std::size_t index = 1; index < names.size(); ++index)
        list += (index + 1 < names.size() ? ", " : " or ") + names[index];
    return list;
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

}  // namespace kalim::cli
