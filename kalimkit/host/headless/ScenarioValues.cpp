#include "kalimkit/host/headless/ScenarioValues.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

// Up to here every whole number is a double.
constexpr double largestWhole = 9007199254740992.0;

bool readWhole(const JsonValue& value, double least, double& out) {
    const double* number = value.number();
    if (!number || std::trunc(*number) != *number) return false;
    out = *number;
    return out >= least && out <= largestWhole;
}

// Computes Levenshtein's distance: the fewest letters to insert, drop or change.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

// Empty when no name is close.
std::string_view nearestName(std::string_view typed, const std::vector<std::string_view>& names) {
    std::string_view nearest;
    // Two slips, or one letter in three of a long name.
    std::size_t closest = std::max<std::size_t>(2, typed.size() / 3) + 1;
    for (const std::string_view name : names) {
        const std::size_t distance = editDistance(typed, name);
        if (distance >= closest || distance >= name.size()) continue;
        closest = distance;
        nearest = name;
    }
    return nearest;
}

bool readFour(const JsonValue& value, double (&out)[4]) {
    const JsonValue::Array* numbers = value.array();
    if (!numbers || numbers->size() != 4) return false;
    for (std::size_t index = 0; index < 4; ++index) {
        const double* number = (*numbers)[index].number();
        if (!number || std::abs(*number) > largestCoordinate) return false;
        out[index] = *number;
    }
    return true;
}

}  // namespace

// ---- reading

bool readValue(const JsonValue& value, bool& out) {
    const bool* flag = value.boolean();
    if (flag) out = *flag;
    return flag != nullptr;
}

bool readValue(const JsonValue& value, double& out) {
    const double* number = value.number();
    if (number) out = *number;
    return number != nullptr;
}

bool readValue(const JsonValue& value, float& out) {
    const double* number = value.number();
    if (!number || std::abs(*number) > static_cast<double>(std::numeric_limits<float>::max())) {
        return false;
    }
    out = static_cast<float>(*number);
    return true;
}

bool readValue(const JsonValue& value, std::int64_t& out) {
    double number = 0;
    if (!readWhole(value, -largestWhole, number)) return false;
    out = static_cast<std::int64_t>(number);
    return true;
}

bool readValue(const JsonValue& value, std::uint64_t& out) {
    double number = 0;
    if (!readWhole(value, 0, number)) return false;
    out = static_cast<std::uint64_t>(number);
    return true;
}

bool readValue(const JsonValue& value, std::string& out) {
    const std::string* text = value.string();
    if (text) out = *text;
    return text != nullptr;
}

bool readValue(const JsonValue& value, gfx::Point& out) {
    const JsonValue::Array* pair = value.array();
    if (!pair || pair->size() != 2) return false;
    const double* x = pair->front().number();
    const double* y = pair->back().number();
    if (!x || !y || std::abs(*x) > largestCoordinate || std::abs(*y) > largestCoordinate) {
        return false;
    }
    out = {*x, *y};
    return true;
}

bool readValue(const JsonValue& value, gfx::Rect& out) {
    double numbers[4] = {};
    if (!readFour(value, numbers)) return false;
    out = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return true;
}

bool readValue(const JsonValue& value, ui::EdgeInsets& out) {
    double numbers[4] = {};
    if (!readFour(value, numbers)) return false;
    if (std::ranges::any_of(numbers, [](double number) { return number < 0; })) return false;
    out = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return true;
}

bool readValue(const JsonValue& value, PictureCut& out) {
    if (!value.object()) return false;
    PictureCut cut;
    for (const auto& [key, member] : *value.object()) {
        if (key == "crop") {
            gfx::Rect crop;
            if (member.isNull()) continue;
            if (!readValue(member, crop)) return false;
            cut.crop = crop;
        } else if (key == "quarterTurns") {
            std::uint64_t turns = 0;
            if (!readValue(member, turns) || turns > 3) return false;
            cut.quarterTurns = static_cast<int>(turns);
        } else {
            return false;
        }
    }
    out = cut;
    return true;
}

bool readValue(const JsonValue& value, gfx::ColorRef& out) {
    const std::string* text = value.string();
    const std::optional<gfx::Color> color = text ? gfx::Color::fromHex(*text) : std::nullopt;
    if (color) out = gfx::makeColor(*color);
    return color.has_value();
}

std::string wrongValue(const std::string& what, std::string_view kind, const JsonValue& value) {
    return what + " must be " + std::string(kind) + ", not " + cutQuote(dumpJson(value));
}

std::string shownName(const std::string& name) {
    const auto isControl = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
    };
    if (name.size() <= longestQuote && std::ranges::none_of(name, isControl)) return name;
    return cutQuote(dumpJson(name));
}

// ---- writing

JsonValue toJson(gfx::Point point) {
    return JsonValue::Array{point.x, point.y};
}

JsonValue toJson(const gfx::Rect& rect) {
    return JsonValue::Array{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

JsonValue toJson(const ui::EdgeInsets& insets) {
    return JsonValue::Array{insets.top, insets.left, insets.bottom, insets.right};
}

JsonValue toJson(const PictureCut& cut) {
    return JsonValue::Object{{"crop", cut.crop ? toJson(*cut.crop) : JsonValue()},
                             {"quarterTurns", cut.quarterTurns}};
}

JsonValue toJson(const gfx::ColorRef& color) {
    return color ? JsonValue(color->hex()) : JsonValue();
}

// ---- names

std::string suggestion(std::string_view typed, const std::vector<std::string_view>& names) {
    if (typed.size() > longestQuote) return {};
    const std::string_view nearest = nearestName(typed, names);
    return nearest.empty() ? std::string() : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace kalim
