#include "kalimkit/editor/desk/DeskNote.h"

#include <algorithm>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr double shownFor = 1.8;
constexpr double fadeDuration = 0.25;
constexpr double textSize = 14;
constexpr double sideMargin = 16;
constexpr double height = 36;
constexpr double bottomGap = 24;

}  // namespace

std::shared_ptr<DeskNote> DeskNote::make() {
    const std::shared_ptr<DeskNote> note(new DeskNote);
    note->init({});
    note->setUserInteractionEnabled(false);
    note->setBackgroundColor(gfx::makeColor(0.1, 0.1, 0.1, 0.86));
    note->setCornerRadius(height / 2);
    note->setHidden(true);
    note->_label = ui::Label::initWithFrame({});
    note->_label->setFont({"", textSize});
    note->_label->setTextColor(gfx::makeColor(1, 1, 1));
    note->addSubview(note->_label);
    return note;
}

void DeskNote::show(const std::string& text) {
    _label->setText(text);
    setHidden(false);
    setAlpha(1);
    place();
    const std::weak_ptr<ui::View> weakSelf = weak_from_this();
    ui::Environment::current().runLoop().after(shownFor, [weakSelf, count = ++_count] {
        const auto note = std::static_pointer_cast<DeskNote>(weakSelf.lock());
        if (note && note->_count == count) note->fade();
    });
}

void DeskNote::fade() {
    const std::weak_ptr<ui::View> weakSelf = weak_from_this();
    animate(
        {.duration = fadeDuration}, [this] { setAlpha(0); },
        [weakSelf, count = _count](bool) {
            const auto note = std::static_pointer_cast<DeskNote>(weakSelf.lock());
            if (note && note->_count == count) note->setHidden(true);
        });
}

void DeskNote::placeIn(const gfx::Rect& room) {
    _room = room;
    place();
}

void DeskNote::place() {
    const double width =
        std::min(_label->intrinsicContentSize().width + 2 * sideMargin, _room.size.width);
    setFrame({_room.midX() - width / 2, std::max(_room.maxY() - bottomGap - height, _room.minY()),
              width, height});
    _label->setFrame({sideMargin, 0, std::max(width - 2 * sideMargin, 0.0), height});
}

}  // namespace kalim
