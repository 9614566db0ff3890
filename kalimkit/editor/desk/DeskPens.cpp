#include "kalimkit/editor/desk/DeskPens.h"

#include <algorithm>

#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

// The desk's icon of the pen's name, or of its own one; empty where there is neither.
std::string iconOf(const Pen& pen) {
    for (const std::string_view name : {pen.name, pen.icon}) {
        if (!name.empty() && imageNamedForFramework("icon_desk_" + std::string(name)))
            return std::string(name);
    }
    return {};
}

}  // namespace

std::shared_ptr<DeskPens> DeskPens::make(const std::vector<unsigned>& pens,
                                         const std::vector<HostButton>& buttons, Chosen chosen) {
    const std::shared_ptr<DeskPens> bar(new DeskPens);
    bar->begin("画笔");
    bar->_scroll = ui::ScrollView::initWithFrame({});
    bar->_scroll->setDelegate(std::static_pointer_cast<DeskPens>(bar->shared_from_this()));
    bar->addSubview(bar->_scroll);
    for (const bool isAtEnd : {false, true}) {
        bar->_marks.push_back(
            DeskScrollMark::make(bar->_scroll, DeskScrollMark::Way::Down, isAtEnd));
        bar->addSubview(bar->_marks.back());
    }
    for (const unsigned number : pens) {
        if (const Pen* const pen = penNumbered(number)) bar->addPen(*pen, chosen);
    }
    for (const HostButton& button : buttons) {
        if (button.place != HostButton::Place::Pens) continue;
        const auto made = makeDeskButton(button);
        bar->_scroll->addSubview(made);
        bar->_buttons.push_back({std::nullopt, button.identifier, made});
    }
    return bar;
}

void DeskPens::addPen(const Pen& pen, const Chosen& chosen) {
    const std::string text = ui::hostText(pen.text, pen.english);
    const auto button = ui::DeskButton::make(iconOf(pen));
    if (button->icon().empty())
        button->setImage(imageNamedForFramework("icon_tool_" + std::string(pen.icon)));
    button->setTip(text, pen.keyName());
    button->setHandler([chosen, number = pen.number] { chosen(number); });
    button->setAccessibilityRole(ui::AccessibilityRole::RadioButton);
    _scroll->addSubview(button);
    _buttons.push_back({pen.number, penIdentifier(pen), button});
}

void DeskPens::setColumns(std::size_t columns) {
    _columns = std::max<std::size_t>(columns, 1);
    setNeedsLayout();
}

void DeskPens::showPen(unsigned pen) {
    for (const Entry& entry : _buttons)
        entry.button->setSelected(entry.pen == pen);
}

std::vector<EditorShell::Named> DeskPens::views() const {
    std::vector<EditorShell::Named> all;
    for (const Entry& entry : _buttons)
        all.push_back({entry.name, entry.button});
    all.push_back({"back", _marks.front()});
    all.push_back({"more", _marks.back()});
    return all;
}

void DeskPens::scrollViewDidScroll(ui::ScrollView& /*view*/) {
    for (const auto& mark : _marks)
        mark->follow();
}

void DeskPens::layoutSubviews() {
    const DeskSizes sizes = DeskSizes::current();
    const double side = sizes.button;
    const double left = safeAreaInsets().left;
    _scroll->setFrame({left, 0, bounds().size.width - left - 1, bounds().size.height});
    for (std::size_t i = 0; i < _buttons.size(); ++i) {
        const auto column = static_cast<double>(i % _columns);
        const auto row = static_cast<double>(i / _columns);
        _buttons[i].button->setFrame({sizes.margin() + column * side, 4 + row * side, side, side});
    }
    const auto rows = static_cast<double>((_buttons.size() + _columns - 1) / _columns);
    _scroll->setContentSize({_scroll->bounds().size.width, rows * side + 8});
    // What was scrolled to may have come to lie beyond the end.
    const ui::ScrollRange range = _scroll->verticalRange();
    const double offset = std::clamp(_scroll->contentOffset().y, range.least, range.most);
    if (offset != _scroll->contentOffset().y) _scroll->setContentOffset({0, offset});
    for (const auto& mark : _marks)
        mark->follow();
}

}  // namespace kalim
