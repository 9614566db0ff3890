#include "kalimkit/canvas/CanvasSpeech.h"

#include <algorithm>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/ToolDescription.h"

namespace kalim {

bool CanvasSpeech::isAnnounced(const MDrawTool& tool) const {
    const ZoomedCanvasView& view = _canvas.home.view();
    const bool isHidden = view.pictureCut().crop && !view.ctxRect().intersects(tool.frame());
    return !isHidden && !tool.isNewBuild() && &tool != _canvas.typing.text().get();
}

// In view points. One that is drawn along a line has an area all the same.
gfx::Rect CanvasSpeech::announcedFrame(MDrawTool& tool) const {
    tool.refreshTransform();
    const bool hasLine = tool.toolClass().layer() == ToolLayer::Items;
    const gfx::Rect box = hasLine ? tool.frameIncludeLineWidth() : gfx::boundsOf(tool.area());
    const double least = tool.lineWidth();
    const gfx::Size missing{std::max(least - box.size.width, 0.0),
                            std::max(least - box.size.height, 0.0)};
    return _canvas.home.view().mViewTransform().apply(
        box.inset(-missing.width / 2, -missing.height / 2));
}

std::vector<ui::AccessibilityElement> CanvasSpeech::elements() {
    _keys.forgetGone();
    std::vector<ui::AccessibilityElement> elements;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (!isAnnounced(*tool)) continue;
        elements.push_back({.key = _keys.keyOf(tool),
                            .role = tool->toolClass().role(),
                            .label = describe(*tool),
                            .value = {},
                            .frame = announcedFrame(*tool),
                            .isEnabled = _canvas.selection.isPickable(*tool),
                            .isSelected = tool->selected()});
    }
    return elements;
}

std::string CanvasSpeech::describe(const MDrawTool& tool) const {
    const ZoomedCanvasView& view = _canvas.home.view();
    const bool showsPicture = !view.bgImgRect().isEmpty() && !view.pictureCut().crop;
    const gfx::Rect content = showsPicture ? view.bgImgRect() : view.ctxRect();
    return describeTool(tool, content, view.pictureCut().quarterTurns);
}

ToolList CanvasSpeech::pickable() const {
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (isAnnounced(*tool) && _canvas.selection.isPickable(*tool)) tools.push_back(tool);
    }
    return tools;
}

bool CanvasSpeech::activate(std::uint64_t key) {
    const ToolList& tools = _canvas.tools.list();
    const auto found =
        std::ranges::find_if(tools, [&](const ToolRef& tool) { return _keys.keyOf(tool) == key; });
    if (found == tools.end() || _canvas.finger.isCreating()) return false;
    const ToolRef tool = *found;
    CanvasSelection& selection = _canvas.selection;
    if (!isAnnounced(*tool) || !selection.isPickable(*tool)) return false;
    if (const auto owner = _canvas.home.owner()) owner->didDrawStarted();
    _canvas.typing.end();
    if (!_canvas.tools.contains(tool)) return false;
    if (!selection.contains(tool)) {
        selection.add(tool, tool->frame().center());
    } else if (tool->toolClass().recorder() == ToolRecorder::Typing) {
        _canvas.typing.edit(tool);
    } else {
        selection.remove(tool);
        selection.forgetTap();
    }
    _canvas.home.redisplay();
    return true;
}

}  // namespace kalim
