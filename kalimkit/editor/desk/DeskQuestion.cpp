#include "kalimkit/editor/desk/DeskQuestion.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/editor/desk/DeskBar.h"

namespace kalim {

namespace {

// Points.
constexpr double panelWidth = 300;
constexpr double panelRadius = 13;
constexpr double textInset = 18;
constexpr double buttonHeight = 46;
constexpr double gap = 1;
// How far below its place it comes from.
constexpr double rise = 24;

}  // namespace

KLMActionsheetView::Layouter DeskQuestion::makeLayouter() {
    return [question = std::make_shared<DeskQuestion>()](const KLMActionsheetView& sheet,
                                                         bool isUp) { question->lay(sheet, isUp); };
}

DeskQuestion::DeskQuestion()
    : _head(ui::View::initWithFrame({})), _text(ui::Label::initWithFrame({})) {
    _head->setBackgroundColor(gfx::makeColor(1, 1, 1));
    _head->addSubview(_text);
    _text->setText(deskText("当前的标注将会丢失"));
    _text->setFont({"", 15, true});
    _text->setNumberOfLines(0);
}

DeskQuestion::~DeskQuestion() {
    _head->removeFromSuperview();
    const auto panel = _panel.lock();
    if (!panel) return;
    panel->setCornerRadius(0);
    panel->setClipsToBounds(false);
    panel->setAlpha(1);
}

void DeskQuestion::lay(const KLMActionsheetView& sheet, bool isUp) {
    ui::View& panel = *sheet.sheetPanel();
    if (!_head->superview()) {
        _panel = sheet.sheetPanel();
        panel.addSubview(_head);
        panel.setCornerRadius(panelRadius);
        panel.setClipsToBounds(true);
    }
    const gfx::Rect all = sheet.bounds();
    const double width = std::min(panelWidth, all.size.width);
    const double textWidth = width - 2 * textInset;
    const double textHeight = _text->sizeThatFits({textWidth, 0}).height;
    _text->setFrame({textInset, textInset, textWidth, textHeight});
    _head->setFrame({0, 0, width, textHeight + 2 * textInset});
    double top = _head->frame().maxY() + gap;
    for (const auto& button : sheet.buttons()) {
        button->setContentEdgeInsets({});
        button->setFrame({0, top, width, buttonHeight});
        top += buttonHeight + gap;
    }
    const double height = top - gap;
    panel.setFrame({std::floor(all.midX() - width / 2),
                    std::floor(all.midY() - height / 2) + (isUp ? 0 : rise), width, height});
    panel.setAlpha(isUp ? 1 : 0);
}

}  // namespace kalim
