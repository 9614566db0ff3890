#include "cli/EditOptionValues.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "cli/OptionValues.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/theme/HexColor.h"

namespace kalim::cli {

namespace {

constexpr std::pair<std::string_view, unsigned> pens[] = {
    {"freehand", EditorPenFreehand},   {"line", EditorPenLine},      {"arrow", EditorPenArrow},
    {"rectangle", EditorPenRectangle}, {"ellipse", EditorPenCircle}, {"text", EditorPenText},
    {"mosaic", EditorPenMosaic},
};

// Points.
constexpr double widestLine = 100;

}  // namespace

std::string readFormat(const std::string& text, std::optional<PictureFormat>& format) {
    format = pictureFormat(text);
    return format ? std::string() : "must be png, jpeg or webp, not " + text;
}

std::string readPen(const std::string& text, std::optional<unsigned>& pen) {
    const auto* const found = std::ranges::find(pens, std::string_view(text),
                                                [](const auto& pair) { return pair.first; });
    if (found != std::end(pens)) {
        pen = found->second;
        return {};
    }
    return "must be freehand, line, arrow, rectangle, ellipse, text or mosaic, not " + text;
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
