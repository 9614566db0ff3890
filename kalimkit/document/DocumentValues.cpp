#include "kalimkit/document/DocumentValues.h"

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kalim {

namespace {

constexpr std::string_view pointKind = "a point [x,y] with coordinates up to 1000000000";

bool isInReach(const double* number) {
    return number && std::abs(*number) <= largestDocumentNumber;
}

// As many numbers as the array holds, or nothing.
template <std::size_t count>
bool readNumbers(const JsonValue& value, double (&numbers)[count]) {
    const JsonValue::Array* const list = value.array();
    if (!list || list->size() != count) return false;
    for (std::size_t i = 0; i < count; ++i) {
        const double* const number = (*list)[i].number();
        if (!isInReach(number)) return false;
        numbers[i] = *number;
    }
    return true;
}

bool readInto(const JsonValue& value, gfx::Point& point) {
    double pair[2] = {};
    if (!readNumbers(value, pair)) return false;
    point = {pair[0], pair[1]};
    return true;
}

// The index of the first element that is none, or that the value is no list, goes into `wrong`.
struct WrongPlace {
    std::string index;
    const JsonValue* value = nullptr;
};

bool readInto(const JsonValue& value, gfx::Point& point, WrongPlace& wrong) {
    if (readInto(value, point)) return true;
    wrong = {"", &value};
    return false;
}

template <typename Element>
bool readInto(const JsonValue& value, std::vector<Element>& list, WrongPlace& wrong) {
    const JsonValue::Array* const elements = value.array();
    if (!elements) {
        wrong = {"", &value};
        return false;
    }
    list.reserve(elements->size());
    for (std::size_t i = 0; i < elements->size(); ++i) {
        if (readInto((*elements)[i], list.emplace_back(), wrong)) continue;
        wrong.index = "[" + std::to_string(i) + "]" + wrong.index;
        return false;
    }
    return true;
}

template <typename List>
ToolDetailValue readListOf(DocumentPlace& place, std::string_view key, std::string_view kind) {
    List list;
    WrongPlace wrong;
    const JsonValue& value = place.need(key);
    if (!readInto(value, list, wrong)) {
        const bool isList = !wrong.index.empty();
        place.complain(place.pathOf(key) + wrong.index + " must be " +
                       std::string(isList && !wrong.value->array() ? pointKind : kind) + ", not " +
                       quoted(*wrong.value));
    }
    return list;
}

template <typename List>
std::optional<ToolDetailValue> listFrom(const JsonValue& value) {
    List list;
    WrongPlace wrong;
    if (!readInto(value, list, wrong)) return std::nullopt;
    return list;
}

}  // namespace

// ---- writing

JsonValue jsonOf(gfx::Point point) {
    return JsonValue::Array{point.x, point.y};
}

JsonValue jsonOf(const gfx::Rect& rect) {
    return JsonValue::Array{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

JsonValue jsonOf(const gfx::ColorRef& color) {
    return color ? JsonValue(color->hex()) : JsonValue();
}

JsonValue componentsOf(const gfx::ColorRef& color) {
    if (!color || gfx::Color::fromHex(color->hex()) == *color) return {};
    return JsonValue::Array{color->red, color->green, color->blue, color->alpha};
}

namespace {

JsonValue detailOf(gfx::Point point) {
    return jsonOf(point);
}

JsonValue detailOf(double number) {
    return number;
}

JsonValue detailOf(const std::string& text) {
    return text;
}

template <typename Element>
JsonValue detailOf(const std::vector<Element>& list) {
    JsonValue::Array elements;
    elements.reserve(list.size());
    for (const Element& element : list)
        elements.push_back(detailOf(element));
    return elements;
}

}  // namespace

JsonValue jsonOf(const ToolDetailValue& detail) {
    return std::visit([](const auto& value) { return detailOf(value); }, detail);
}

// ---- reading

gfx::Point readPoint(DocumentPlace& place, std::string_view key) {
    gfx::Point point;
    if (!readInto(place.need(key), point)) place.fail(key, pointKind);
    return point;
}

gfx::Rect readRect(DocumentPlace& place, std::string_view key) {
    double numbers[4] = {};
    if (!readNumbers(place.need(key), numbers)) {
        place.fail(key, "a rectangle [x,y,w,h] with numbers up to 1000000000");
    }
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

gfx::ColorRef readColor(DocumentPlace& place, std::string_view key) {
    const JsonValue& value = place.need(key);
    const std::string* const text = value.string();
    const auto color = text ? gfx::Color::fromHex(*text) : std::nullopt;
    if (!color && !value.isNull())
        place.fail(key, "a colour \"#RRGGBB\" or \"#RRGGBBAA\", or null");
    return color ? gfx::makeColor(*color) : nullptr;
}

gfx::ColorRef readComponents(DocumentPlace& place, std::string_view key) {
    double numbers[4] = {};
    if (!readNumbers(place.need(key), numbers)) {
        place.fail(key, "four components [red,green,blue,alpha] from 0 to 1");
    }
    return gfx::makeColor(numbers[0], numbers[1], numbers[2], numbers[3]);
}

ToolDetailValue readDetail(DocumentPlace& place, const ToolDetailRule& rule) {
    switch (rule.type) {
        case ToolDetailRule::Type::Number:
            return place.number(rule.name, rule.least, largestDocumentNumber);
        case ToolDetailRule::Type::Text:
            return place.text(rule.name);
        case ToolDetailRule::Type::Points:
            return readListOf<std::vector<gfx::Point>>(place, rule.name, "a list of points [x,y]");
        case ToolDetailRule::Type::Lines:
            return readListOf<PointLines>(place, rule.name, "a list of lists of points [x,y]");
    }
    return 0.0;
}

std::optional<ToolDetailValue> detailFrom(const JsonValue& value) {
    if (const double* const number = value.number()) return *number;
    if (const std::string* const text = value.string()) return *text;
    if (auto points = listFrom<std::vector<gfx::Point>>(value)) return points;
    return listFrom<PointLines>(value);
}

}  // namespace kalim
