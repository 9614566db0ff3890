#include "cli/OptionValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace kalim::cli {

namespace {

constexpr double smallestScale = 0.5;
constexpr double largestScale = 8;

// "1,2,3"; nothing where there are not `count` of them.
std::optional<std::vector<double>> parseNumbers(std::string_view text, std::size_t count) {
    std::vector<double> numbers;
    while (numbers.size() < count) {
        const bool isLast = numbers.size() + 1 == count;
        const std::size_t comma = isLast ? text.size() : text.find(',');
        if (comma == std::string_view::npos) return std::nullopt;
        const auto number = parseNumber(text.substr(0, comma));
        if (!number) return std::nullopt;
        numbers.push_back(*number);
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    return numbers;
}

// Reads "390x844".
std::optional<gfx::Size> parseSize(const std::string& text) {
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos) return std::nullopt;
    const auto width = parseNumber(std::string_view(text).substr(0, cross));
    const auto height = parseNumber(std::string_view(text).substr(cross + 1));
    if (!width || !height) return std::nullopt;
    return gfx::Size{*width, *height};
}

}  // namespace

std::optional<double> parseNumber(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::string readSize(const std::string& text, const char* example, gfx::Size& size) {
    const auto isSide = [](double side) { return side >= 1 && side <= longestSide; };
    const std::optional<gfx::Size> sides = parseSize(text);
    if (!sides || !isSide(sides->width) || !isSide(sides->height)) {
        return std::string("must be two sides from 1 to 32767 like ") + example + ", not " + text;
    }
    size = *sides;
    return {};
}

std::string readScale(const std::string& text, double& scale) {
    const std::optional<double> number = parseNumber(text);
    if (!number || *number < smallestScale || *number > largestScale) {
        return "must be a number from 0.5 to 8, not " + text;
    }
    scale = *number;
    return {};
}

std::string readRect(const std::string& text, gfx::Rect& rect) {
    const auto numbers = parseNumbers(text, 4);
    if (numbers) rect = {(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
    if (numbers && !rect.isEmpty()) return {};
    return "must be x,y,width,height in pixels like 10,20,300,200, not " + text +
           (numbers ? ", which holds nothing" : "");
}

std::string readNativeHeight(const std::string& text, std::optional<int>& height) {
    const std::optional<double> number = parseNumber(text);
    if (!number || *number != std::floor(*number) || *number < 1 || *number > longestSide) {
        return "must be a number of pixels from 1 to 32767, not " + text;
    }
    height = static_cast<int>(*number);
    return {};
}

std::string readLayout(const std::string& text, SeatLayout& layout) {
    if (text == "auto") {
        layout = SeatLayout::Auto;
    } else if (text == "phone") {
        layout = SeatLayout::Phone;
    } else if (text == "desk") {
        layout = SeatLayout::Desk;
    } else {
        return "must be auto, phone or desk, not " + text;
    }
    return {};
}

std::string readEntrance(const std::string& text, std::optional<EditorSetup::Entrance>& entrance) {
    const auto numbers = parseNumbers(text, 5);
    if (!numbers) return "must be x,y,width,height,scale like 20,40,80,60,0.5, not " + text;
    const auto& n = *numbers;
    entrance = EditorSetup::Entrance{{n[0], n[1], n[2], n[3]}, n[4]};
    return {};
}

std::string readUserDefault(const std::string& text, std::map<std::string, bool>& defaults) {
    const std::size_t equals = text.find('=');
    const std::string value = equals == std::string::npos ? "" : text.substr(equals + 1);
    if (equals == 0 || (value != "true" && value != "false")) {
        return "must be a name and true or false like canUseRingAnimation=false, not " + text;
    }
    defaults[text.substr(0, equals)] = value == "true";
    return {};
}

}  // namespace kalim::cli
