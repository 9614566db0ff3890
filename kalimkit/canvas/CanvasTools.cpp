#include "kalimkit/canvas/CanvasTools.h"

#include <algorithm>

#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/shapes/MDrawLine.h"

namespace kalim {

CanvasTools::CanvasTools(const CanvasShown& shown)
    : _shown(shown), _list(std::make_shared<ToolList>()), _undoManager(_list) {
    _pen.toolClass = &MDrawLine::Class();
    _pen.color = gfx::makeColor(0, 1, 0);
}

bool CanvasTools::contains(const ToolRef& tool) const {
    return std::ranges::find(*_list, tool) != _list->end();
}

void CanvasTools::setForgiving(bool forgiving) {
    _pen.rules.forgiving = forgiving;
    rulesChanged();
}

void CanvasTools::setFineHandles(bool fine) {
    _wantsFineHandles = fine;
    rulesChanged();
}

void CanvasTools::rulesChanged() {
    _pen.rules.fineHandles = _wantsFineHandles && _pen.rules.forgiving;
    _undoManager.setRules(_pen.rules);
    for (const ToolRef& tool : *_list)
        tool->setRules(_pen.rules);
}

void CanvasTools::prepare(MDrawTool& tool) const {
    _pen.prepare(tool);
    tool.setQuarterTurns(quarterTurns());
}

int CanvasTools::quarterTurns() const {
    return _shown.picture.cut().quarterTurns;
}

void CanvasTools::refreshShared() {
    for (const ToolRef& tool : *_list)
        _pen.applyShared(*tool);
}

void CanvasTools::add(const ToolRef& tool) {
    _undoManager.addTool(tool);
    recount();
}

void CanvasTools::open(ToolList tools) {
    *_list = std::move(tools);
    _counted.forget();
    recount();
}

void CanvasTools::recordExchange(const ToolRef& left, const ToolRef& came) {
    const auto both = MDrawMutableSelect::make();
    both->addSubTool(left);
    both->addSubTool(came);
    _undoManager.addExchange(both);
}

void CanvasTools::discard(const ToolRef& tool) {
    const ToolRef kept = tool;
    forget(kept);
    kept->setIsNewBuild(false);
}

void CanvasTools::clear() {
    _list->clear();
    _counted.forget();
    _undoManager.reset();
}

// What has left the canvas since does not come back by its place.
void CanvasTools::lay(const ToolPlacements& placements) {
    ToolPlacements laid;
    for (const ToolPlacement& placement : placements) {
        if (std::erase(*_list, placement.tool) > 0) laid.push_back(placement);
    }
    for (const ToolPlacement& placement : laid)
        insert(placement.tool, std::min(placement.place, _list->size()));
}

// Patches lie below everything else, and what makes the shade lies on them, whenever they were
// made.
ToolRef CanvasTools::topmostAt(gfx::Point p) const {
    // What is not to be seen cannot be meant.
    if (_shown.isCropped() && !_shown.picture.part().contains(p)) return nullptr;
    ToolRef lower;
    for (auto tool = _list->rbegin(); tool != _list->rend(); ++tool) {
        if ((*tool)->isNewBuild() || (*tool)->isLocked()) continue;
        (*tool)->setViewScale(_shown.picture.hasBasis() ? _shown.touchScale() : 0);
        if (!(*tool)->hitTest(p)) continue;
        const ToolLayer layer = (*tool)->toolClass().layer();
        if (layer == ToolLayer::Items) return *tool;
        const bool isHigher =
            lower && layer == ToolLayer::Shade && lower->toolClass().layer() == ToolLayer::Ground;
        if (!lower || isHigher) lower = *tool;
    }
    return lower;
}

double CanvasTools::touchScale() const {
    return _shown.touchScale();
}

void CanvasTools::scaleForScreen(MDrawTool& tool) const {
    tool.setHandleViewScale(_shown.zoom.contextScale() * _shown.picture.fittingScale());
    tool.setViewScale(_shown.picture.hasBasis() ? _shown.touchScale() : 0);
}

}  // namespace kalim
