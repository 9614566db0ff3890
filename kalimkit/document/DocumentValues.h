#pragma once

#include <optional>

#include "kalimkit/document/DocumentPlace.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/json/JsonValue.h"
#include "kalimkit/tool/ToolDetail.h"

namespace kalim {

// No coordinate, width or size of a document is larger, canvas points.
inline constexpr double largestDocumentNumber = 1e9;

// ---- writing
JsonValue jsonOf(gfx::Point point);
JsonValue jsonOf(const gfx::Rect& rect);
// Writes "#RRGGBBAA", or null for none.
JsonValue jsonOf(const gfx::ColorRef& color);
JsonValue jsonOf(const ToolDetailValue& detail);
// The components [red,green,blue,alpha], each 0 to 1, of a colour that the above does not name to
// the last digit; null for others.
JsonValue componentsOf(const gfx::ColorRef& color);

// ---- reading members; where they are of another kind, that is a problem
gfx::Point readPoint(DocumentPlace& place, std::string_view key);
gfx::Rect readRect(DocumentPlace& place, std::string_view key);
// Makes a new colour object. Null is none.
gfx::ColorRef readColor(DocumentPlace& place, std::string_view key);
gfx::ColorRef readComponents(DocumentPlace& place, std::string_view key);
ToolDetailValue readDetail(DocumentPlace& place, const ToolDetailRule& rule);
// What a member reads as, whatever kind it is; nothing where no detail looks so.
std::optional<ToolDetailValue> detailFrom(const JsonValue& value);

}  // namespace kalim
