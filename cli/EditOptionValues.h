#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/Edit.h"
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
// "auto", which is empty then, or a language that there are texts in, such as "de" or "pt_BR".
std::string readLanguage(const std::string& text, std::string& language);
std::string readTheme(const std::string& text, EditOptions::Theme& theme);
// Lists of the above, with commas between.
std::string readPens(const std::string& text, std::vector<std::string>& pens);
std::string readColors(const std::string& text, std::vector<gfx::ColorRef>& colors);
std::string readWidths(const std::string& text, std::vector<double>& widths);
// "save-to-file,exit"
std::string readActions(const std::string& text,
                        std::optional<std::vector<EditOptions::Action>>& actions);

}  // namespace kalim::cli
