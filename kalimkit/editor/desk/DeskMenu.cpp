#include "kalimkit/editor/desk/DeskMenu.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/TesselViewController.h"

namespace kalim {

namespace {

using Items = std::vector<ui::MenuItem>;
using Arranged = bool (*)(CanvasArrangement& arrangement);

class MenuMaker {
public:
    explicit MenuMaker(const DeskShell::Editor& editor)
        : _editor(std::static_pointer_cast<TesselViewController>(editor.screen.shared_from_this())),
          _keys(editor.keys) {}

    MDrawView& canvas() const { return *_editor->drawView(); }

    // Does what a key does.
    ui::MenuItem byKey(const char* text, const char* key, const char* icon = "") const {
        return {.text = deskText(text),
                .run = whileShown([keys = &_keys, key] { keys->press(key); }),
                .key = key,
                .icon = icon};
    }
    ui::MenuItem arranging(const char* text, const char* icon, Arranged arranged,
                           bool isEnabled = true) const {
        return {.text = deskText(text),
                .run = whileShown([editor = _editor.get(), arranged] {
                    arranged(*editor->drawView()->arrangement());
                }),
                .icon = icon,
                .isEnabled = isEnabled};
    }
    Items order() const {
        return {
            arranging("移到最前", "front",
                      [](CanvasArrangement& all) { return all.changeOrder(OrderChange::ToFront); }),
            arranging("前移一层", "",
                      [](CanvasArrangement& all) { return all.changeOrder(OrderChange::Forward); }),
            arranging(
                "后移一层", "",
                [](CanvasArrangement& all) { return all.changeOrder(OrderChange::Backward); }),
            arranging("移到最后", "back",
                      [](CanvasArrangement& all) { return all.changeOrder(OrderChange::ToBack); })};
    }
    Items alignment(std::size_t count) const {
        const bool canDistribute = count > 2;
        return {arranging("左对齐", "alignleft",
                          [](CanvasArrangement& all) { return all.align(Alignment::Left); }),
                arranging("水平居中", "aligncenter",
                          [](CanvasArrangement& all) { return all.align(Alignment::Center); }),
                arranging("右对齐", "alignright",
                          [](CanvasArrangement& all) { return all.align(Alignment::Right); }),
                arranging("顶端对齐", "aligntop",
                          [](CanvasArrangement& all) { return all.align(Alignment::Top); }),
                arranging("垂直居中", "alignmiddle",
                          [](CanvasArrangement& all) { return all.align(Alignment::Middle); }),
                arranging("底端对齐", "alignbottom",
                          [](CanvasArrangement& all) { return all.align(Alignment::Bottom); }),
                ui::MenuItem::separator(),
                arranging(
                    "水平等距", "distributehorizontally",
                    [](CanvasArrangement& all) { return all.distribute(Direction::Horizontally); },
                    canDistribute),
                arranging(
                    "垂直等距", "distributevertically",
                    [](CanvasArrangement& all) { return all.distribute(Direction::Vertically); },
                    canDistribute)};
    }

private:
    // The menu goes with the window, which holds the editor; the keys go with that.
    std::function<void()> whileShown(std::function<void()> step) const {
        return [weakEditor = std::weak_ptr(_editor), step = std::move(step)] {
            const auto editor = weakEditor.lock();
            if (editor && editor->shell()) step();
        };
    }

    std::shared_ptr<TesselViewController> _editor;
    EditorKeys& _keys;
};

Items itemsOfSelection(const MenuMaker& make, std::size_t count) {
    ui::MenuItem order{.text = deskText("层次")};
    order.items = make.order();
    ui::MenuItem alignment{.text = deskText("对齐")};
    alignment.items = make.alignment(count);
    return {
        make.byKey("剪切", "ctrl+x", "cut"),
        make.byKey("拷贝", "ctrl+c", "copy"),
        make.byKey("粘贴", "ctrl+v", "paste"),
        make.arranging("再制", "duplicate", [](CanvasArrangement& all) { return all.duplicate(); }),
        make.byKey("删除", "delete", "delete"),
        ui::MenuItem::separator(),
        std::move(order),
        std::move(alignment),
        make.arranging(
            "组合", "group", [](CanvasArrangement& all) { return all.group(); }, count > 1),
        make.arranging("取消组合", "ungroup", [](CanvasArrangement& all) { return all.ungroup(); }),
        make.arranging("锁定", "lock", [](CanvasArrangement& all) { return all.lock(); })};
}

Items itemsOfCanvas(const MenuMaker& make) {
    return {
        make.byKey("粘贴", "ctrl+v", "paste"),
        make.arranging("全选", "select", [](CanvasArrangement& all) { return all.selectAll(); }),
        make.arranging("全部解锁", "unlock", [](CanvasArrangement& all) { return all.unlock(); }),
        ui::MenuItem::separator(),
        make.byKey("撤销", "ctrl+z", "undo"),
        make.byKey("重做", "ctrl+shift+z", "redo"),
        ui::MenuItem::separator(),
        make.byKey("显示整张图片", "ctrl+0", "zoomfit"),
        make.byKey("实际像素", "ctrl+1")};
}

}  // namespace

Items deskMenu(const DeskShell::Editor& editor, gfx::Point place) {
    const MenuMaker make(editor);
    MDrawView& canvas = make.canvas();
    const gfx::Point point = canvas.invertViewPoint(canvas.convertPointFrom(place, nullptr));
    const ToolRef tool = canvas.testHitTestSelectTool(point);
    if (!tool) return itemsOfCanvas(make);
    if (!tool->selected()) canvas.selectTools({tool});
    const auto& group = canvas.handingTools();
    if (!group) return itemsOfCanvas(make);
    return itemsOfSelection(make, group->subTools().size());
}

}  // namespace kalim
