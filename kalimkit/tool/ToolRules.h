#pragma once

namespace kalim {

// What a canvas asks of every tool that lies on it. It hands the rules down as it does the
// measuring; a tool that lies on none keeps to the defaults.
struct ToolRules {
    // See MDrawView::setForgiving.
    bool forgiving = false;
    // See MDrawView::setFineHandles.
    bool fineHandles = false;

    bool operator==(const ToolRules&) const = default;
};

}  // namespace kalim
