#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

#include "kalimkit/editor/screen/ArrangingKeys.h"
#include "kalimkit/editor/screen/EditorKeyTable.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/environment/Environment.h"

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

std::string localized(std::string_view text) {
    return ui::Environment::current().localizedString(std::string(text));
}

// Keys that do the same stand in one row.
void add(ui::KeyGroup& group, const std::string& text, std::string_view key) {
    const auto row = std::ranges::find(group.rows, text, &ui::KeyRow::text);
    if (row != group.rows.end()) {
        row->keys.emplace_back(key);
    } else {
        group.rows.push_back({text, {std::string(key)}});
    }
}

}  // namespace

// What a command is called where all keys are listed, whatever key it has.
struct EditorKeys::CommandText {
    bool (EditorKeys::*run)();
    Group group;
    std::string_view text;
};

const EditorKeys::CommandText EditorKeys::texts[] = {
    {&EditorKeys::undo, Edit, "撤销"},
    {&EditorKeys::redo, Edit, "重做"},
    {&EditorKeys::deleteSelection, Edit, "删除"},
    {&EditorKeys::escape, Edit, "结束、取消选择、关闭"},
    {&EditorKeys::confirm, Picture, "完成"},
    {&EditorKeys::saveDocument, Picture, "保存为文档"},
    {&EditorKeys::openFile, Picture, "打开文件"},
    {&EditorKeys::enter, Edit, "编辑文字，或完成"},
    {&EditorKeys::copy, Edit, "复制形状，或图片"},
    {&EditorKeys::cut, Edit, "剪切形状"},
    {&EditorKeys::paste, Edit, "粘贴形状，或图片"},
    {&EditorKeys::lockOrUnlock, Shapes, "锁定或解锁"},
    {&EditorKeys::unlockAll, Shapes, "全部解锁"},
    {&EditorKeys::holdSpace, View, "按住并拖动画布"},
    {&EditorKeys::takeColor<0>, Look, "颜色"},
    {&EditorKeys::takeColor<1>, Look, "颜色"},
    {&EditorKeys::takeColor<2>, Look, "颜色"},
    {&EditorKeys::takeColor<3>, Look, "颜色"},
    {&EditorKeys::takeColor<4>, Look, "颜色"},
    {&EditorKeys::thinner, Look, "变细"},
    {&EditorKeys::thicker, Look, "变粗"},
    {&EditorKeys::zoomToFit, View, "显示整张图片"},
    {&EditorKeys::zoomToPixels, View, "实际像素"},
    {&EditorKeys::zoomIn, View, "放大"},
    {&EditorKeys::zoomOut, View, "缩小"},
    {&EditorKeys::showKeys, View, "快捷键"},
    {&EditorKeys::toggleFullScreen, View, "全屏"},
};

std::vector<ui::KeyGroup> EditorKeys::list() {
    std::vector<ui::KeyGroup> groups(groupCount);
    for (std::size_t i = 0; i < groups.size(); ++i)
        groups[i].title = localized(titles[i]);
    for (const Pen& pen : pens()) {
        if (pen.key) add(groups[Pens], localized(pen.text), std::string_view(&pen.key, 1));
    }
    for (const Command& command : allCommands()) {
        const auto* const named = std::ranges::find(texts, command.run, &CommandText::run);
        const bool hasText = named != std::end(texts);
        add(groups[hasText ? named->group : Edit], hasText ? localized(named->text) : std::string(),
            command.key);
    }
    for (const ArrangingKey& each : arrangingKeys())
        add(groups[Shapes], localized(each.text), each.key);
    for (const HeldKey& held : heldKeys)
        add(groups[Drag], localized(held.text), held.key);
    std::erase_if(groups, [](const ui::KeyGroup& group) { return group.rows.empty(); });
    return groups;
}

}  // namespace kalim
