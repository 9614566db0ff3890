#include "kalimkit/editor/desk/DeskActions.h"

#include <algorithm>

#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/screen/EditorKeys.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/SafeArea.h"

namespace kalim {

namespace {

constexpr double gap = 2;
// Between undo and redo, what makes a copy, and what ends the work.
constexpr double groupGap = 10;

// One of an icon is a little wider than it is high.
double widthOf(const ui::View& button) {
    const double more = DeskSizes::current().button - DeskLayout::buttonSide;
    return static_cast<const ui::DeskButton&>(button).fittingSize().width + std::max(more, 0.0);
}

double gapBefore(const std::string& name) {
    return name == "copy" || name == "close" ? groupGap : gap;
}

const std::string& titleOf(const ui::Button& button) {
    return button.title(ui::ControlState::Normal);
}

}  // namespace

std::shared_ptr<DeskActions> DeskActions::make(TesselViewController& editor, EditorKeys& keys) {
    const std::shared_ptr<DeskActions> bar(new DeskActions);
    bar->begin("工具栏");
    bar->add("undo", "undo", "撤销", "ctrl+z", [&editor] { editor.toolView()->handleUndo(); });
    bar->add("redo", "redo", "重做", "ctrl+shift+z",
             [&editor] { editor.toolView()->handleRedo(); });
    if (keys.offers(EditorAction::Copy))
        bar->add("copy", "copy", "拷贝", "ctrl+c", [&keys] { keys.copyPicture(); });
    if (keys.offers(EditorAction::Save))
        bar->add("save", "save", "保存", "", [&keys] { keys.savePicture(); });
    if (keys.offers(EditorAction::SaveAs))
        bar->add("saveAs", "saveas", "另存为", "", [&keys] { keys.savePictureAs(); });
    for (const HostButton& button : editor.offer().buttons()) {
        if (button.place == HostButton::Place::Actions)
            bar->add(button.identifier, makeDeskButton(button));
    }
    const std::string& closeTitle = titleOf(*editor.toolView()->closeButton());
    bar->add("close", "close", closeTitle, "escape",
             [&editor] { editor.toolView()->handleClose(); });
    bar->add("done", "", deskConfirmTitle(titleOf(*editor.toolView()->confirmButton())), "ctrl+s",
             [&editor] { editor.toolView()->handleConfirm(); });
    std::static_pointer_cast<ui::DeskButton>(bar->_buttons.back().view)
        ->setStyle(ui::DeskButton::Style::Accent);
    return bar;
}

void DeskActions::add(const std::string& name, const std::string& icon, const std::string& text,
                      const std::string& key, std::function<void()> action) {
    add(name, makeDeskButton(icon, deskText(text), key, std::move(action)));
}

void DeskActions::add(const std::string& name, const std::shared_ptr<ui::DeskButton>& button) {
    addSubview(button);
    _buttons.push_back({name, button});
    if (name == "undo") _undo = button;
    if (name == "redo") _redo = button;
}

void DeskActions::show(const DeskReading& reading) {
    _undo->setEnabled(reading.canUndo);
    _redo->setEnabled(reading.canRedo);
}

std::vector<EditorShell::Named> DeskActions::views() const {
    return _buttons;
}

// ---- layout

double DeskActions::wantedWidth() const {
    double width = 2 * DeskLayout::barMargin + safeAreaInsets().right + hostSpan();
    for (const auto& [name, view] : _buttons)
        width += gapBefore(name) + widthOf(*view);
    return width;
}

void DeskActions::setHostRoom(double width) {
    _hostWidth = width;
    setNeedsLayout();
}

// With the gap behind it.
double DeskActions::hostSpan() const {
    return _hostWidth > 0 ? _hostWidth + groupGap : 0;
}

gfx::Rect DeskActions::hostRoom() const {
    const double top = safeAreaInsets().top;
    const double middle = top + (bounds().size.height - top) / 2;
    const double side = DeskSizes::current().button;
    return {DeskLayout::barMargin, middle - side / 2, _hostWidth, side};
}

void DeskActions::layoutSubviews() {
    const double top = safeAreaInsets().top;
    const double middle = top + (bounds().size.height - top) / 2;
    const double side = DeskSizes::current().button;
    double left = DeskLayout::barMargin + hostSpan();
    for (const auto& [name, view] : _buttons) {
        left += gapBefore(name);
        const double width = widthOf(*view);
        view->setFrame({left, middle - side / 2, width, side});
        left += width;
    }
}

}  // namespace kalim
