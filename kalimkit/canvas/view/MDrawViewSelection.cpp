#include <algorithm>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/ToolClasses.h"

namespace kalim {

void MDrawView::selectTools(const ToolList& tools) {
    const auto alive = self();
    clearSelection();
    const auto group = MDrawMutableSelect::make();
    for (const ToolRef& tool : tools) {
        const bool isOnCanvas = std::ranges::find(*_tools, tool) != _tools->end();
        if (!isOnCanvas || tool->isNewBuild() || group->containTool(tool)) continue;
        group->addSubTool(tool);
    }
    if (!group->isValidTools()) return;
    group->setSelected(true);
    _handingTools = group;
    notifySelection();
    setNeedsDisplay();
}

void MDrawView::selectNone() {
    if (!isSelectionValid()) return;
    const auto alive = self();
    clearSelection();
    setNeedsDisplay();
}

void MDrawView::addToolToSelectedToolsPoint(const ToolRef& tool, gfx::Point p) {
    if (_handingTools && _handingTools->subTools().size() == 1 &&
        _handingTools->firstSelectedTool() != tool) {
        removeToolFromSelectedTools(_handingTools->firstSelectedTool());
    }
    if (!_handingTools) _handingTools = MDrawMutableSelect::make();
    if (_handingTools->containTool(tool)) {
        removeToolFromSelectedTools(tool);
        return;
    }
    _handingTools->addSubTool(tool);
    tool->hitOnHandle(p);
    tool->setSelected(true);
    notifySelection();
}

void MDrawView::removeToolFromSelectedTools(const ToolRef& tool) {
    if (!_handingTools || !_handingTools->containTool(tool)) return;
    const ToolRef kept = tool;  // The caller's reference may be an element of the group's list.
    _handingTools->removeSubTool(kept);
    kept->setSelected(false);
    kept->finalize();
    if (!_handingTools->isValidTools()) _handingTools = nullptr;
    notifySelection();
}

void MDrawView::clearSelection() {
    if (!_handingTools) return;
    _handingTools->setSelected(false);
    _handingTools->finalize();
    _handingTools = nullptr;
    notifySelection();
}

void MDrawView::notifySelection() {
    const auto alive = self();
    const auto delegate = _drawViewdelegate.lock();
    if (!delegate) return;
    const ToolRef first = _handingTools ? _handingTools->firstSelectedTool() : nullptr;
    delegate->seletedToolsStateChanged(isSelectionValid());
    delegate->currentSelectedToolsPropertyChangedColorLineWidth(getToolTypeForClass(first.get()),
                                                                first ? first->color() : nullptr,
                                                                first ? first->lineWidth() : 0.0);
}

void MDrawView::recordSelectionChange() {
    const auto alive = self();
    _undoManager->addToolSuccess(_handingTools);
    setNeedsDisplay();
}

}  // namespace kalim
