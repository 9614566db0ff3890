#include <algorithm>
#include <iterator>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/ArrangingKeys.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/TesselViewController.h"

// The keys for shapes that there are.

namespace kalim {

namespace {

template <int x, int y>
bool nudge(CanvasArrangement& shapes) {
    return shapes.nudge({x, y});
}
template <Alignment alignment>
bool align(CanvasArrangement& shapes) {
    return shapes.align(alignment);
}
template <Direction direction>
bool distribute(CanvasArrangement& shapes) {
    return shapes.distribute(direction);
}
template <OrderChange change>
bool order(CanvasArrangement& shapes) {
    return shapes.changeOrder(change);
}
template <bool (CanvasArrangement::*operation)()>
bool run(CanvasArrangement& shapes) {
    return (shapes.*operation)();
}

constexpr ArrangingKey keys[] = {
    {"left", &nudge<-1, 0>, "移动", true},
    {"right", &nudge<1, 0>, "移动", true},
    {"up", &nudge<0, -1>, "移动", true},
    {"down", &nudge<0, 1>, "移动", true},
    {"shift+left", &nudge<-10, 0>, "移动 10 点", true},
    {"shift+right", &nudge<10, 0>, "移动 10 点", true},
    {"shift+up", &nudge<0, -10>, "移动 10 点", true},
    {"shift+down", &nudge<0, 10>, "移动 10 点", true},
    {"ctrl+a", &run<&CanvasArrangement::selectAll>, "全选"},
    {"ctrl+d", &run<&CanvasArrangement::duplicate>, "再来一份"},
    {"ctrl+g", &run<&CanvasArrangement::group>, "编组"},
    {"ctrl+shift+g", &run<&CanvasArrangement::ungroup>, "取消编组"},
    {"ctrl+]", &order<OrderChange::Forward>, "上移一层"},
    {"ctrl+[", &order<OrderChange::Backward>, "下移一层"},
    {"ctrl+shift+]", &order<OrderChange::ToFront>, "置于顶层"},
    {"ctrl+shift+[", &order<OrderChange::ToBack>, "置于底层"},
    {"alt+a", &align<Alignment::Left>, "左对齐"},
    {"alt+h", &align<Alignment::Center>, "左右居中"},
    {"alt+d", &align<Alignment::Right>, "右对齐"},
    {"alt+w", &align<Alignment::Top>, "顶端对齐"},
    {"alt+v", &align<Alignment::Middle>, "上下居中"},
    {"alt+s", &align<Alignment::Bottom>, "底端对齐"},
    {"alt+shift+h", &distribute<Direction::Horizontally>, "横向均匀分布"},
    {"alt+shift+v", &distribute<Direction::Vertically>, "纵向均匀分布"},
};

}  // namespace

std::span<const ArrangingKey> arrangingKeys() {
    return keys;
}

bool EditorKeys::arrange(std::string_view key, bool isRepeated) {
    const auto* const found = std::ranges::find(keys, key, &ArrangingKey::key);
    return found != std::end(keys) && (!isRepeated || found->repeats) &&
           found->run(*_editor.lock()->drawView()->arrangement());
}

bool EditorKeys::lockOrUnlock() {
    const auto canvas = _editor.lock()->drawView();
    if (!canvas->hasSelectedTools()) return false;
    return canvas->arrangement()->lock() || canvas->arrangement()->unlock();
}

bool EditorKeys::unlockAll() {
    const auto canvas = _editor.lock()->drawView();
    canvas->selectNone();
    return canvas->arrangement()->unlock();
}

bool EditorKeys::endTextBy(std::string_view key) {
    const auto editor = _editor.lock();
    if (!editor->drawView()->curEdittingTextTool()) return false;
    // A phone's keyboard has no other key for a line.
    const bool ends = key == "ctrl+enter" || (editor->shell() && key == "enter");
    if (ends) editor->clickToolDone();
    return ends;
}

}  // namespace kalim
