#include <algorithm>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/ToolDescription.h"

namespace kalim {

bool MDrawView::isAnnounced(const MDrawTool& tool) const {
    return !tool.isNewBuild() && &tool != _curEdittingTextTool.get();
}

// In view points. One that is drawn along a line has an area all the same.
gfx::Rect MDrawView::announcedFrame(MDrawTool& tool) const {
    tool.refreshTransform();
    const bool hasLine = tool.toolClass().layer() == ToolLayer::Items;
    const gfx::Rect box = hasLine ? tool.frameIncludeLineWidth() : tool.frame();
    const double least = tool.lineWidth();
    const gfx::Size missing{std::max(least - box.size.width, 0.0),
                            std::max(least - box.size.height, 0.0)};
    return mViewTransform().apply(box.inset(-missing.width / 2, -missing.height / 2));
}

std::vector<ui::AccessibilityElement> MDrawView::accessibilityElements() {
    _toolKeys.forgetGone();
    const gfx::Rect content = bgImgRect().isEmpty() ? ctxRect() : bgImgRect();
    std::vector<ui::AccessibilityElement> elements;
    for (const ToolRef& tool : *_tools) {
        if (!isAnnounced(*tool)) continue;
        elements.push_back({.key = _toolKeys.keyOf(tool),
                            .role = tool->toolClass().role(),
                            .label = describeTool(*tool, content),
                            .value = {},
                            .frame = announcedFrame(*tool),
                            .isEnabled = isPickable(*tool),
                            .isSelected = tool->selected()});
    }
    return elements;
}

bool MDrawView::activateAccessibilityElement(std::uint64_t key) {
    const auto alive = self();
    const auto found = std::ranges::find_if(
        *_tools, [&](const ToolRef& tool) { return _toolKeys.keyOf(tool) == key; });
    if (found == _tools->end() || isBeingCreated()) return false;
    const ToolRef tool = *found;
    if (!isAnnounced(*tool) || !isPickable(*tool)) return false;
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didDrawStarted();
    checkAndEndTextToolEdittingText();
    if (!isOnCanvas(tool)) return false;
    if (!_handingTools || !_handingTools->containTool(tool)) {
        addToolToSelectedToolsPoint(tool, tool->frame().center());
    } else if (tool->toolClass().recorder() == ToolRecorder::Typing) {
        editText(std::static_pointer_cast<MDrawText>(tool));
    } else {
        removeToolFromSelectedTools(tool);
        _taps.forget();
    }
    redisplay();
    return true;
}

}  // namespace kalim
