#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/host/headless/EditorSetup.h"
#include "kalimkit/host/seat/EditorSeat.h"

namespace kalim::cli {

// Points, and pixels of either side of the screen: more than a surface can have.
inline constexpr double longestSide = 32767;

// Takes the whole text as a finite number.
std::optional<double> parseNumber(std::string_view text);

// Each reads the value of an option, and answers with nothing or with what is wrong with it.

// "390x844", which `example` shows the user.
std::string readSize(const std::string& text, const char* example, gfx::Size& size);
// Reads pixels per point.
std::string readScale(const std::string& text, double& scale);
// "10,20,300,200"
std::string readRect(const std::string& text, gfx::Rect& rect);
std::string readNativeHeight(const std::string& text, std::optional<int>& height);
// "10,20,30,40,0.5": the thumbnail's place and the scale to start from.
std::string readEntrance(const std::string& text, std::optional<EditorSetup::Entrance>& entrance);
// "auto", "phone" or "desk"
std::string readLayout(const std::string& text, SeatLayout& layout);
// Reads "canUseRingAnimation=false".
std::string readUserDefault(const std::string& text, std::map<std::string, bool>& defaults);

}  // namespace kalim::cli
