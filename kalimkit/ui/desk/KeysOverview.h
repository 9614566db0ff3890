#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/desk/KeyGroup.h"
#include "kalimkit/ui/desk/Popover.h"

namespace kalim::ui {

// A sheet that lists keys in columns, as many as the window has room for. Escape, a press beside it
// and the same keys that have opened it close it.
class KALIM_API KeysOverview : public View {
public:
    // Over the window; once more while it is open closes it, and null is returned.
    static std::shared_ptr<Popover> show(Window& window, std::vector<KeyGroup> groups);

    std::vector<AccessibilityElement> accessibilityElements() override;

protected:
    explicit KeysOverview(std::vector<KeyGroup> groups) : _groups(std::move(groups)) {}
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    // A line of the sheet: a group's title, or a row with its keys.
    struct Line {
        gfx::Rect frame;
        std::string text;
        std::string keys;
        // Of the frame: the keys stand beside the text, or below it where both are long.
        gfx::Rect textPlace = {};
        gfx::Rect keysPlace = {};
    };
    static Line makeRow(const KeyRow& row, gfx::Point origin, double width);
    // Puts the groups into columns; the frame takes the size that they need.
    void arrange(double width);

    std::vector<KeyGroup> _groups;
    std::vector<Line> _lines;
};

}  // namespace kalim::ui
