#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// How a line is broken, lengths along it in canvas points. The round ends of the pen reach into the
// gaps by half its width.
struct Dashes {
    double on = 0;
    double off = 0;
};

// Those of a line of that width by the name that the property "dash" has; nothing for a solid one.
KALIM_API std::optional<Dashes> dashesNamed(std::string_view name, double lineWidth);

// Where a dash lies along its line.
struct DashSpan {
    double from = 0;
    double to = 0;
};

// Those of a line of that length, stretched so that both of its ends are inked.
KALIM_API std::vector<DashSpan> dashSpans(double length, const Dashes& dashes);

enum class DashFit {
    // Stretched a little, so that both ends of a line and the corners of an outline are inked.
    ToEnds,
    // As they are from the start on: what is added at the end changes nothing before it.
    FromStart,
};

// The inked pieces as open subpaths. Subpaths that go on where the last one has ended count as one
// line. A line that would fall into too many pieces to tell apart stays whole.
KALIM_API gfx::Path dashedPath(const gfx::Path& path, const Dashes& dashes, DashFit fit);

}  // namespace kalim
