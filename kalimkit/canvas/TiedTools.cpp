#include "kalimkit/canvas/TiedTools.h"

#include <algorithm>
#include <utility>

namespace kalim {

void TiedTools::markGround(const gfx::Rect& rect) {
    if (!_repeaters.empty()) _changedGround.push_back(rect);
}

void TiedTools::update(const ToolList& tools) {
    if (!std::exchange(_isListChanged, false)) return;
    _blends = false;
    _shades.clear();
    _repeaters.clear();
    for (const ToolRef& tool : tools) {
        const ToolClass& kind = tool->toolClass();
        _blends = _blends || kind.blends();
        if (kind.layer() == ToolLayer::Shade) _shades.push_back(tool);
        if (tool->repeatedPlace()) _repeaters.push_back(tool);
    }
}

TiedTools::Shade TiedTools::shade() const {
    Shade shade;
    for (const ToolRef& tool : _shades) {
        if (!tool->isDrawVaild()) continue;
        shade.dark = std::max(shade.dark, tool->shade());
        shade.areas.push_back(tool->area());
    }
    return shade;
}

std::vector<gfx::Rect> TiedTools::takeShadeChanges(const gfx::Rect& everything) {
    if (_shades.empty() && _seen.areas.empty()) return {};
    const Shade now = shade();
    const Shade before = std::exchange(_seen, now);
    if (now.dark != before.dark) return {everything};
    std::vector<gfx::Rect> changed;
    const auto collect = [&](const Shade& shade, const Shade& other) {
        for (const gfx::Polygon& area : shade.areas) {
            const bool isSame = std::ranges::find(other.areas, area) != other.areas.end();
            if (!isSame) changed.push_back(gfx::boundsOf(area));
        }
    };
    collect(before, now);
    collect(now, before);
    return changed;
}

ToolList TiedTools::takeRepeaters() {
    ToolList repeaters;
    const std::vector<gfx::Rect> changed = std::exchange(_changedGround, {});
    if (changed.empty()) return repeaters;
    std::ranges::copy_if(_repeaters, std::back_inserter(repeaters), [&](const ToolRef& tool) {
        const std::optional<gfx::Rect> place = tool->repeatedPlace();
        return place && std::ranges::any_of(changed, [&](const gfx::Rect& rect) {
                   return rect.intersects(*place);
               });
    });
    return repeaters;
}

}  // namespace kalim
