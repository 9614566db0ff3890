#pragma once

#include <optional>
#include <string>

#include "cli/PictureFormat.h"
#include "kalimkit/gfx/Color.h"

namespace kalim::cli {

// Each reads the value of an option of `kalimkit edit`, and answers with nothing or with what is
// wrong with it.

std::string readFormat(const std::string& text, std::optional<PictureFormat>& format);
// Lists all that readPen takes, as "freehand, line or text".
std::string penNames();
// Reads "arrow", say, as the number of an EditorPen.
std::string readPen(const std::string& text, std::optional<unsigned>& pen);
// Reads points.
std::string readLineWidth(const std::string& text, std::optional<double>& width);
// "#F63434"
std::string readColor(const std::string& text, gfx::ColorRef& color);

}  // namespace kalim::cli
