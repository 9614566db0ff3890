#include "kalimkit/editor/screen/ClosingQuestion.h"

#include <cstdint>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

constexpr std::int64_t discardQuestionTag = 0x636C6174;
constexpr int discardAnswer = 1;
constexpr int sendAnswer = 2;

}  // namespace

void ClosingQuestion::ask(std::weak_ptr<KLMActionsheetViewDelegate> delegate,
                          const std::optional<std::string>& sendTitle) {
    if (_sheet) return;
    const ui::Environment& environment = ui::Environment::current();
    _sheet = KLMActionsheetView::initActionSheetCancelButtonTitleDelegate(
        environment.localizedString("继续标注"), environment.localizedString("放弃修改"),
        std::move(delegate));
    _sheet->setTag(discardQuestionTag);
    // A host may have emptied the button; an answer without a word is none.
    if (sendTitle) {
        _sendTitle = sendTitle->empty() ? environment.localizedString("发送") : *sendTitle;
        _sheet->addAnswer(_sendTitle, sendAnswer);
    }
    shellDidChange();
    _sheet->showAlert(_stage.window() ? *_stage.window()->rootView() : _stage.view());
}

void ClosingQuestion::shellDidChange() {
    if (!_sheet) return;
    const auto& shell = _stage.shell();
    if (const auto button = _sheet->buttonWithTag(sendAnswer))
        button->setTitle(shell ? shell->confirmTitle(_sendTitle) : _sendTitle);
    _sheet->setLayouter(shell ? shell->questionLayouter() : nullptr);
}

std::optional<ClosingQuestion::Answer> ClosingQuestion::answered(const KLMActionsheetView& sheet,
                                                                 int button) {
    if (_sheet.get() == &sheet) _sheet = nullptr;
    if (sheet.tag() != discardQuestionTag) return std::nullopt;
    if (button == sendAnswer) return Answer::Send;
    return button == discardAnswer ? Answer::Discard : Answer::GoOn;
}

void ClosingQuestion::drop() {
    if (const auto sheet = std::exchange(_sheet, nullptr)) sheet->removeFromSuperview();
}

}  // namespace kalim
