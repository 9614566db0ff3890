#include "kalimkit/canvas/DrawnTools.h"

#include <optional>
#include <unordered_set>
#include <utility>

namespace kalim {

namespace {

std::unordered_set<const MDrawTool*> setOf(const ToolList& tools) {
    std::unordered_set<const MDrawTool*> set;
    for (const ToolRef& tool : tools)
        set.insert(tool.get());
    return set;
}

}  // namespace

void DrawnTools::markChanged(const ToolRef& tool) {
    if (!tool) return;
    if (tool->mutabaleToolObjType()) {
        tool->addSubToolToArray(_changed);
    } else {
        _changed.push_back(tool);
    }
}

void DrawnTools::forget() {
    _places.clear();
    _live.clear();
    _liveExtents.clear();
    _changed.clear();
    _isListChanged = _isLiveChanged = true;
}

DrawnTools::Stale DrawnTools::update(const ToolList& tools, const ToolRef& selection,
                                     const ToolList& created, bool isSelectionLive) {
    Stale stale;
    ToolList live = created;
    if (selection && isSelectionLive) selection->addSubToolToArray(live);
    if (std::exchange(_isListChanged, false)) updateMembership(tools, stale);
    updateLive(tools, std::move(live), stale);
    for (const ToolRef& tool : std::exchange(_changed, {})) {
        const auto found = _places.find(tool.get());
        // What is drawn over the layer as it is now has been settled just before.
        if (found == _places.end() || found->second.isLive || tool == stale.onTop) continue;
        vacate(found->second, stale);
        settle(found->second, tools, stale);
    }
    if (std::exchange(_isLiveChanged, false)) updateLiveExtents(selection, created, stale);
    return stale;
}

// Newcomers count as live until they are found not to be.
void DrawnTools::updateMembership(const ToolList& tools, Stale& stale) {
    const auto present = setOf(tools);
    std::erase_if(_places, [&](const auto& entry) {
        if (present.contains(entry.first)) return false;
        if (!entry.second.isLive) vacate(entry.second, stale);
        return true;
    });
    const auto live = setOf(_live);
    for (const ToolRef& tool : tools) {
        const auto [place, isNew] = _places.try_emplace(tool.get());
        if (!isNew) continue;
        place->second.tool = tool;
        place->second.layer = _rules.layerOf(*tool);
        if (!live.contains(tool.get())) _live.push_back(tool);
    }
}

void DrawnTools::updateLive(const ToolList& tools, ToolList live, Stale& stale) {
    const auto now = setOf(live);
    for (const ToolRef& tool : _live) {
        const auto found = _places.find(tool.get());
        if (now.contains(tool.get()) || found == _places.end()) continue;
        settle(found->second, tools, stale);
        _isLiveChanged = true;
    }
    for (const ToolRef& tool : live) {
        const auto found = _places.find(tool.get());
        if (found == _places.end() || found->second.isLive) continue;
        vacate(found->second, stale);
        found->second.isLive = true;
        _isLiveChanged = true;
    }
    if (live != _live) _isLiveChanged = true;
    _live = std::move(live);
}

void DrawnTools::updateLiveExtents(const ToolRef& selection, const ToolList& created,
                                   Stale& stale) {
    std::unordered_map<const MDrawTool*, gfx::Rect> extents;
    if (selection) extents.emplace(selection.get(), liveExtent(*selection, stale));
    for (const ToolRef& tool : created)
        extents.emplace(tool.get(), liveExtent(*tool, stale));
    for (const auto& [tool, extent] : _liveExtents)
        stale.live.push_back(extent);
    _liveExtents = std::move(extents);
}

// Takes the tool's old extent off the list when only a part of it has to be drawn again.
gfx::Rect DrawnTools::liveExtent(MDrawTool& tool, Stale& stale) {
    const std::optional<gfx::Rect> added = tool.takeAddedExtent();
    const auto known = _liveExtents.find(&tool);
    if (!added || known == _liveExtents.end() || tool.showMeasurement()) {
        stale.live.push_back(_rules.extentOf(tool));
        return stale.live.back();
    }
    gfx::Rect extent = known->second;
    _liveExtents.erase(known);
    if (added->isEmpty()) return extent;
    stale.live.push_back(*added);
    return extent.isEmpty() ? *added : extent.unionWith(*added);
}

void DrawnTools::settle(Place& place, const ToolList& tools, Stale& stale) const {
    place.isLive = false;
    place.extent = _rules.extentOf(*place.tool);
    const bool isOnTop = !stale.onTop && place.layer == CanvasLayers::Items &&
                         place.tool == tools.back() && stale.layers[CanvasLayers::Items].empty();
    if (isOnTop) {
        stale.onTop = place.tool;
        stale.onTopExtent = place.extent;
    } else {
        stale.layers[place.layer].push_back(place.extent);
    }
}

void DrawnTools::vacate(const Place& place, Stale& stale) {
    stale.layers[place.layer].push_back(place.extent);
}

bool DrawnTools::isDrawnIn(const MDrawTool& tool, CanvasLayers::Layer layer,
                           const gfx::Rect& rect) const {
    const auto found = _places.find(&tool);
    if (found == _places.end()) return false;
    const Place& place = found->second;
    return !place.isLive && place.layer == layer && place.extent.intersects(rect);
}

}  // namespace kalim
