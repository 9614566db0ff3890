#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

#include "kalimkit/editor/screen/EditorKeyTable.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

// In the order in which they are listed.
enum Group { Pens, Edit, Shapes, Look, View, Picture, Drag, groupCount };

constexpr std::string_view titles[] = {"画笔", "编辑", "形状",      "样式",
                                       "视图", "图片", "拖动时按住"};

// What keys do while something is dragged; these are no commands.
struct HeldKey {
    std::string_view key;
    std::string_view text;
};
constexpr HeldKey heldKeys[] = {
    {"shift", "正方、正圆、15° 一步"},
    {"alt", "从中心画"},
    {"ctrl", "不对齐参考线，或框选"},
    {"space", "移动正在画的形状"},
};

// What the keys do, whoever has them.
struct KeyText {
    std::string_view key;
    Group group;
    std::string_view text;
};
constexpr KeyText texts[] = {
    {"ctrl+z", Edit, "撤销"},
    {"ctrl+shift+z", Edit, "重做"},
    {"ctrl+y", Edit, "重做"},
    {"delete", Edit, "删除"},
    {"backspace", Edit, "删除"},
    {"escape", Edit, "结束、取消选择、关闭"},
    {"enter", Edit, "编辑文字，或完成"},
    {"ctrl+s", Picture, "完成"},
    {"ctrl+shift+s", Picture, "保存为文档"},
    {"ctrl+o", Picture, "打开文件"},
    {"ctrl+c", Edit, "复制形状，或图片"},
    {"ctrl+x", Edit, "剪切形状"},
    {"ctrl+v", Edit, "粘贴形状，或图片"},
    {"ctrl+l", Shapes, "锁定或解锁"},
    {"ctrl+shift+l", Shapes, "全部解锁"},
    {"space", View, "按住并拖动画布"},
    {"1", Look, "颜色"},
    {"2", Look, "颜色"},
    {"3", Look, "颜色"},
    {"4", Look, "颜色"},
    {"5", Look, "颜色"},
    {"[", Look, "变细"},
    {"]", Look, "变粗"},
    {"ctrl+0", View, "显示整张图片"},
    {"ctrl+1", View, "实际像素"},
    {"plus", View, "放大"},
    {"-", View, "缩小"},
    {"f1", View, "快捷键"},
    {"?", View, "快捷键"},
    {"f11", View, "全屏"},
    {"left", Shapes, "移动"},
    {"right", Shapes, "移动"},
    {"up", Shapes, "移动"},
    {"down", Shapes, "移动"},
    {"shift+left", Shapes, "移动 {count} 点"},
    {"shift+right", Shapes, "移动 {count} 点"},
    {"shift+up", Shapes, "移动 {count} 点"},
    {"shift+down", Shapes, "移动 {count} 点"},
    {"alt+left", Shapes, "改变大小"},
    {"alt+right", Shapes, "改变大小"},
    {"alt+up", Shapes, "改变大小"},
    {"alt+down", Shapes, "改变大小"},
    {"alt+shift+left", Shapes, "改变大小 {count} 点"},
    {"alt+shift+right", Shapes, "改变大小 {count} 点"},
    {"alt+shift+up", Shapes, "改变大小 {count} 点"},
    {"alt+shift+down", Shapes, "改变大小 {count} 点"},
    {"r", Shapes, "旋转 15°"},
    {"shift+r", Shapes, "旋转 15°"},
    {"tab", Shapes, "下一个或上一个形状"},
    {"shift+tab", Shapes, "下一个或上一个形状"},
    {"n", Shapes, "在中间添加形状"},
    {"ctrl+a", Shapes, "全选"},
    {"ctrl+d", Shapes, "再来一份"},
    {"ctrl+g", Shapes, "编组"},
    {"ctrl+shift+g", Shapes, "取消编组"},
    {"ctrl+]", Shapes, "上移一层"},
    {"ctrl+[", Shapes, "下移一层"},
    {"ctrl+shift+]", Shapes, "置于顶层"},
    {"ctrl+shift+[", Shapes, "置于底层"},
    {"alt+a", Shapes, "左对齐"},
    {"alt+h", Shapes, "左右居中"},
    {"alt+d", Shapes, "右对齐"},
    {"alt+w", Shapes, "顶端对齐"},
    {"alt+v", Shapes, "上下居中"},
    {"alt+s", Shapes, "底端对齐"},
    {"alt+shift+h", Shapes, "横向均匀分布"},
    {"alt+shift+v", Shapes, "纵向均匀分布"},
};

std::string localized(std::string_view text) {
    constexpr int longStep = 10;
    return ui::localText(std::string(text), {{"count", longStep}});
}

std::string_view heldKeysOf(std::string_view key) {
    const std::size_t plus = key.rfind('+');
    return plus == std::string_view::npos ? std::string_view() : key.substr(0, plus + 1);
}

// Keys that do the same stand in one row, and what is held with all of them stands there once.
void add(ui::KeyGroup& group, const std::string& text, std::string_view key) {
    const auto row = std::ranges::find(group.rows, text, &ui::KeyRow::text);
    if (row != group.rows.end()) {
        const std::string_view held = heldKeysOf(key);
        const bool isTold = held == heldKeysOf(row->keys.front());
        row->keys.emplace_back(isTold ? key.substr(held.size()) : key);
    } else {
        group.rows.push_back({text, {std::string(key)}});
    }
}

}  // namespace

std::string_view EditorKeys::textOf(std::string_view key) {
    const auto* const named = std::ranges::find(texts, key, &KeyText::key);
    return named != std::end(texts) ? named->text : std::string_view();
}

std::vector<ui::KeyGroup> EditorKeys::list() {
    std::vector<ui::KeyGroup> groups(groupCount);
    for (std::size_t i = 0; i < groups.size(); ++i)
        groups[i].title = localized(titles[i]);
    for (const Pen& pen : pens()) {
        if (pen.key) add(groups[Pens], ui::hostText(pen.text, pen.english), pen.keyName());
    }
    const auto list = [&](std::string_view key) {
        const auto* const named = std::ranges::find(texts, key, &KeyText::key);
        const bool hasText = named != std::end(texts);
        add(groups[hasText ? named->group : Edit], hasText ? localized(named->text) : std::string(),
            key);
    };
    for (const CanvasKey& each : CanvasKeys::keys())
        list(each.key);
    for (const Command& command : allCommands()) {
        const auto shared = CanvasKeys::keys();
        if (std::ranges::find(shared, command.key, &CanvasKey::key) == shared.end())
            list(command.key);
    }
    for (const HeldKey& held : heldKeys)
        add(groups[Drag], localized(held.text), held.key);
    std::erase_if(groups, [](const ui::KeyGroup& group) { return group.rows.empty(); });
    return groups;
}

}  // namespace kalim
