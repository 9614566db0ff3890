#include "kalimkit/editor/desk/DeskMenu.h"

#include <algorithm>
#include <string>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/PenOnlyMenu.h"
#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

using Items = std::vector<ui::MenuItem>;

class MenuMaker {
public:
    explicit MenuMaker(const DeskShell::Editor& editor)
        : _editor(std::static_pointer_cast<TesselViewController>(editor.screen.shared_from_this())),
          _keys(editor.keys) {}

    MDrawView& canvas() const { return *_editor->drawView(); }

    // Does what a key does.
    ui::MenuItem byKey(std::string_view text, std::string_view key, const char* icon = "",
                       bool isEnabled = true) const {
        return {.text = deskText(text),
                .run = whileShown([keys = &_keys, key] { keys->press(key); }),
                .key = std::string(key),
                .icon = icon,
                .isEnabled = isEnabled};
    }
    // As it is called where all keys are listed.
    ui::MenuItem arranging(std::string_view key, const char* icon = "",
                           bool isEnabled = true) const {
        return byKey(EditorKeys::textOf(key), key, icon, isEnabled);
    }
    Items order() const {
        return {arranging("ctrl+shift+]", "front"), arranging("ctrl+]"), arranging("ctrl+["),
                arranging("ctrl+shift+[", "back")};
    }
    Items alignment(std::size_t count) const {
        const bool canDistribute = count > 2;
        return {arranging("alt+a", "alignleft"),
                arranging("alt+h", "aligncenter"),
                arranging("alt+d", "alignright"),
                arranging("alt+w", "aligntop"),
                arranging("alt+v", "alignmiddle"),
                arranging("alt+s", "alignbottom"),
                ui::MenuItem::separator(),
                arranging("alt+shift+h", "distributehorizontally", canDistribute),
                arranging("alt+shift+v", "distributevertically", canDistribute)};
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

bool isGrouped(const ToolRef& tool) {
    return !tool->groups().empty();
}

Items itemsOfSelection(const MenuMaker& make, const ToolList& tools) {
    const std::size_t count = tools.size();
    ui::MenuItem order{.text = deskText("层次")};
    order.items = make.order();
    ui::MenuItem alignment{.text = deskText("对齐")};
    alignment.items = make.alignment(count);
    return {make.byKey("剪切", "ctrl+x", "scissors"),
            make.byKey("拷贝", "ctrl+c", "copy"),
            make.byKey("粘贴", "ctrl+v", "paste"),
            make.arranging("ctrl+d", "duplicate"),
            make.byKey("删除", "delete", "delete"),
            ui::MenuItem::separator(),
            std::move(order),
            std::move(alignment),
            make.arranging("ctrl+g", "group", count > 1),
            make.arranging("ctrl+shift+g", "ungroup", std::ranges::any_of(tools, isGrouped)),
            make.byKey("锁定", "ctrl+l", "lock")};
}

Items itemsOfCanvas(const MenuMaker& make) {
    const MDrawView& canvas = make.canvas();
    const bool hasLocked = std::ranges::any_of(canvas.tools(), &MDrawTool::isLocked);
    Items items{make.byKey("粘贴", "ctrl+v", "paste"),
                make.arranging("ctrl+a", "select"),
                make.byKey("全部解锁", "ctrl+shift+l", "unlock", hasLocked),
                ui::MenuItem::separator(),
                make.byKey("撤销", "ctrl+z", "undo", canvas.canUndo()),
                make.byKey("重做", "ctrl+shift+z", "redo", canvas.canRedo()),
                ui::MenuItem::separator(),
                make.byKey("显示整张图片", "ctrl+0", "zoomfit"),
                make.byKey("实际像素", "ctrl+1")};
    // Nobody without a pen is asked about it.
    if (canvas.window() && canvas.window()->hasSeenPen()) items.push_back(penOnlyItem());
    return items;
}

}  // namespace

Items deskMenu(const DeskShell::Editor& editor, gfx::Point place) {
    const MenuMaker make(editor);
    MDrawView& canvas = make.canvas();
    const gfx::Point point = canvas.invertViewPoint(canvas.convertPointFrom(place, nullptr));
    if (!canvas.arrangement()->selectAt(point)) return itemsOfCanvas(make);
    return itemsOfSelection(make, canvas.handingTools()->subTools());
}

}  // namespace kalim
