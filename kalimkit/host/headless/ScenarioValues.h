#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/json/JsonValue.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim {

// What is wrong with a step, as a sentence without the line it stands in; nothing when all is well.
using Problem = std::optional<std::string>;

// Coordinates of a scenario, points; farther out nothing can be seen or hit.
inline constexpr double largestCoordinate = 1e6;

// ---- reading. Fills `out` where the value is of its kind, and answers whether it is.
bool readValue(const JsonValue& value, bool& out);
bool readValue(const JsonValue& value, double& out);
// The number must lie within the range of single precision.
bool readValue(const JsonValue& value, float& out);
bool readValue(const JsonValue& value, std::int64_t& out);
bool readValue(const JsonValue& value, std::uint64_t& out);
bool readValue(const JsonValue& value, std::string& out);
bool readValue(const JsonValue& value, gfx::Point& out);
bool readValue(const JsonValue& value, gfx::Rect& out);
bool readValue(const JsonValue& value, ui::EdgeInsets& out);
bool readValue(const JsonValue& value, PictureCut& out);
// Makes a new colour object.
bool readValue(const JsonValue& value, gfx::ColorRef& out);

// What a message calls a value of the kind.
template <typename Kind>
inline constexpr std::string_view kindName{};
template <>
inline constexpr std::string_view kindName<bool> = "true or false";
template <>
inline constexpr std::string_view kindName<double> = "a number";
template <>
inline constexpr std::string_view kindName<float> = "a number of single precision";
template <>
inline constexpr std::string_view kindName<std::int64_t> = "a whole number";
template <>
inline constexpr std::string_view kindName<std::uint64_t> = "a whole number from 0 on";
template <>
inline constexpr std::string_view kindName<std::string> = "a text";
template <>
inline constexpr std::string_view kindName<gfx::Point> =
    "a point [x,y] with coordinates up to 1000000";
template <>
inline constexpr std::string_view kindName<gfx::Rect> =
    "a rectangle [x,y,w,h] with numbers up to 1000000";
template <>
inline constexpr std::string_view kindName<ui::EdgeInsets> =
    "margins [top,left,bottom,right] with numbers from 0 to 1000000";
template <>
inline constexpr std::string_view kindName<PictureCut> =
    "a cut {\"crop\":[x,y,w,h] or null,\"quarterTurns\":0 to 3}";
template <>
inline constexpr std::string_view kindName<gfx::ColorRef> = "a colour \"#RRGGBB\" or \"#RRGGBBAA\"";

// A name as it stands, or quoted and cut short where it is long or would not show.
std::string shownName(const std::string& name);

// "`what` must be `kind`, not `value`", the value cut short where it is long.
std::string wrongValue(const std::string& what, std::string_view kind, const JsonValue& value);

template <typename Kind>
Problem readAs(const JsonValue& value, const std::string& what, Kind& out) {
    if (readValue(value, out)) return std::nullopt;
    return wrongValue(what, kindName<Kind>, value);
}

// Replaces the value where the step has one of its own under the key.
template <typename Kind>
Problem readOwn(const JsonValue& step, const char* key, Kind& value) {
    const JsonValue* own = step.find(key);
    return own ? readAs(*own, "\"" + std::string(key) + "\"", value) : std::nullopt;
}

// A list whose elements are all of the kind; `element` is what a message calls one of them.
template <typename Kind>
Problem readList(const JsonValue& value, const std::string& what, const std::string& element,
                 std::vector<Kind>& out) {
    const JsonValue::Array* elements = value.array();
    if (!elements) return wrongValue(what, "a list", value);
    for (const JsonValue& one : *elements) {
        if (readValue(one, out.emplace_back())) continue;
        std::string name = element + " " + std::to_string(out.size());
        name += " of " + what;
        return wrongValue(name, kindName<Kind>, one);
    }
    return std::nullopt;
}

// ---- writing
JsonValue toJson(gfx::Point point);
// Writes [x,y,w,h].
JsonValue toJson(const gfx::Rect& rect);
// Writes [top,left,bottom,right].
JsonValue toJson(const ui::EdgeInsets& insets);
JsonValue toJson(const PictureCut& cut);
// Writes "#RRGGBBAA", or null for none.
JsonValue toJson(const gfx::ColorRef& color);

// "; did you mean X?" with the name that is most like a mistyped one; nothing when none is close.
std::string suggestion(std::string_view typed, const std::vector<std::string_view>& names);

}  // namespace kalim
