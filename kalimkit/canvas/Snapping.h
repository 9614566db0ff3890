#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// A thin line that shows what a box that is dragged has been laid along.
struct SnapGuide {
    gfx::Point from;
    gfx::Point to;

    bool operator==(const SnapGuide&) const = default;
};

// How far a box goes beyond where it was dragged, and why.
struct Snap {
    gfx::Point offset;
    std::vector<SnapGuide> guides;
};

// What boxes that are dragged are laid along: the edges and middles of other boxes and of the
// picture, and gaps as wide as those of the neighbours. Made once for a drag: asking costs little
// however many boxes there are.
class KALIM_API SnapTargets {
public:
    SnapTargets(const std::vector<gfx::Rect>& boxes, const std::optional<gfx::Rect>& picture);

    // Of a box that is moved as a whole. `reach` is how far it lets itself be drawn.
    Snap moved(const gfx::Rect& box, double reach) const;
    // Of a box whose sides are moved: the left or upper ones by -1, the right or lower ones by 1,
    // none by 0.
    Snap resized(const gfx::Rect& box, int sideX, int sideY, double reach) const;

private:
    // One direction; in the other one all boxes are seen with x and y exchanged.
    struct Axis {
        struct Line {
            double place = 0;
            std::size_t box = 0;
        };
        void sortLines();
        static std::optional<double> nearest(const std::vector<Line>& lines, double place,
                                             double reach);
        std::optional<double> offsetOf(const gfx::Rect& box, double reach) const;
        std::optional<double> gapOffset(const gfx::Rect& box, double reach) const;
        void addGuides(const gfx::Rect& box, bool isTransposed, bool hasGaps,
                       std::vector<SnapGuide>& guides) const;
        void addGapGuides(const gfx::Rect& box, bool isTransposed,
                          std::vector<SnapGuide>& guides) const;
        // Who stands beside a box: the next on either side, and the one behind it.
        struct Neighbours {
            const gfx::Rect* before = nullptr;
            const gfx::Rect* beforeThat = nullptr;
            const gfx::Rect* after = nullptr;
            const gfx::Rect* afterThat = nullptr;
        };
        Neighbours neighboursOf(const gfx::Rect& box) const;

        std::vector<gfx::Rect> boxes;
        // The last one is the picture, which has no gaps.
        bool hasPicture = false;
        // From the least place on; all, and either sort.
        std::vector<Line> lines;
        std::vector<Line> edges;
        std::vector<Line> middles;
    };

    Axis _across;
    Axis _down;
};

}  // namespace kalim
