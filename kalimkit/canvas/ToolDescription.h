#pragma once

#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// The tool in the user's language, for those who do not see it: its colour and kind, the words of a
// text, and in which ninth of the content its middle lies. "红色箭头，左上".
KALIM_API std::string describeTool(const MDrawTool& tool, const gfx::Rect& content,
                                   int quarterTurns = 0);

}  // namespace kalim
