#pragma once

#include <optional>
#include <string>

#include "cli/PictureFormat.h"
#include "kalimkit/gfx/Color.h"

namespace kalim::cli {

// Each reads the value of an option of `kalimkit edit`, and answers with nothing or with what is
// wrong with it.

std::string readFormat(const std::string& text, std::optional<PictureFormat>& format);
// "freehand, line or text", of all that readPen takes.
std::string penNames();
// "arrow", as the number of an EditorPen.
std::string readPen(const std::string& text, std::optional<unsigned>& pen);
// Points.
std::string readLineWidth(const std::string& text, std::optional<double>& width);
// "#F63434"
std::string readColor(const std::string& text, gfx::ColorRef& color);

}  // namespace kalim::cli
