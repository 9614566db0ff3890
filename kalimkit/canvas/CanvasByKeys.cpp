#include "kalimkit/canvas/CanvasByKeys.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasSpeech.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/ToolDescription.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

// Of what is seen, along its shorter side.
constexpr double shareOfNew = 0.3;

std::string localized(const char* text) {
    return ui::Environment::current().localizedString(text);
}

const char* directionOf(gfx::Point offset) {
    if (std::abs(offset.x) >= std::abs(offset.y)) return offset.x > 0 ? "已右移" : "已左移";
    return offset.y > 0 ? "已下移" : "已上移";
}

}  // namespace

// The first of several counts.
bool CanvasByKeys::selectNext(bool forwards) {
    // What waits for more strokes or points is one of them.
    _canvas.finger.endCreation();
    _canvas.arrangement.endNudging();
    const ToolList order = _canvas.speech.pickable();
    const auto& group = _canvas.selection.group();
    const ToolRef current = group ? group->firstSelectedTool() : nullptr;
    const auto found = std::ranges::find(order, current);
    const std::ptrdiff_t count = std::ssize(order);
    std::ptrdiff_t next = forwards ? 0 : count - 1;
    if (found != order.end()) next = found - order.begin() + (forwards ? 1 : -1);
    if (next < 0 || next >= count) {
        _canvas.selection.clear();
        return false;
    }
    choose(order[static_cast<std::size_t>(next)]);
    say({});
    return true;
}

bool CanvasByKeys::nudge(gfx::Point offset) {
    if (!_canvas.arrangement.nudge(offset)) return false;
    say(localized(directionOf(offset)));
    return true;
}

bool CanvasByKeys::resize(gfx::Point growth) {
    if (!_canvas.arrangement.resize(growth)) return false;
    say(localized(growth.x + growth.y > 0 ? "已变大" : "已变小"));
    return true;
}

bool CanvasByKeys::turn(double angle) {
    // Where what is selected cannot be turned the key is not to choose a pen.
    if (!_canvas.arrangement.turn(angle))
        return _canvas.tools.forgiving() && _canvas.selection.isValid();
    const auto& group = _canvas.selection.group();
    const double turned = group ? group->firstSelectedTool()->rotateAngle() : angle;
    const long degrees = std::lround(turned * 180 / std::numbers::pi) % 360;
    say(ui::localText("已转到 {count} 度", {{"count", (degrees + 360) % 360}}));
    return true;
}

bool CanvasByKeys::make() {
    const gfx::Rect place = placeOfNew();
    const std::size_t before = _canvas.tools.list().size();
    if (place.isEmpty() || !_canvas.finger.drawWithin(place)) return false;
    const ToolList& tools = _canvas.tools.list();
    if (tools.size() <= before || tools.back()->isNewBuild()) return tools.size() > before;
    choose(tools.back());
    say(localized("已添加"));
    return true;
}

void CanvasByKeys::choose(const ToolRef& tool) {
    _canvas.selection.select({tool});
    _chosen = _canvas.selection.group();
}

// Canvas points.
gfx::Rect CanvasByKeys::placeOfNew() const {
    const ZoomedCanvasView& view = _canvas.home.view();
    const gfx::AffineTransform toCanvas = view.mViewTransform().inverted();
    gfx::Rect seen = toCanvas.apply(view.layoutMargin().apply(view.bounds()));
    const gfx::Rect picture = view.ctxRect().intersection(seen);
    if (!picture.isEmpty()) seen = picture;
    const double side = std::min(seen.size.width, seen.size.height) * shareOfNew;
    const gfx::Point middle = seen.center();
    return {middle.x - side / 2, middle.y - side / 2, side, side};
}

// What is selected, where it stands, and what has become of it.
void CanvasByKeys::say(const std::string& what) const {
    const auto& group = _canvas.selection.group();
    if (!group || group->subTools().empty()) return;
    const ToolList& chosen = group->subTools();
    std::string text;
    if (chosen.size() == 1) {
        const ToolList order = _canvas.speech.pickable();
        const auto place = std::ranges::find(order, chosen.front()) - order.begin() + 1;
        text = ui::localText("{shape}，第 {place} 个，共 {total} 个",
                             {{"shape", _canvas.speech.describe(*chosen.front())},
                              {"place", std::to_string(place)},
                              {"total", std::to_string(order.size())}});
    } else {
        text = ui::localText("{count} 个图形", {{"count", chosen.size()}});
    }
    if (!what.empty())
        text = ui::localText("{shape}，{change}", {{"shape", text}, {"change", what}});
    ui::Environment::current().announce(text);
}

}  // namespace kalim
