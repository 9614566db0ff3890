#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"

namespace kalim {

// The sheet that asks before the editor is closed with work in it.
class ClosingQuestion {
public:
    enum class Answer { GoOn, Discard, Send };

    explicit ClosingQuestion(const EditorStage& stage) : _stage(stage) {}

    // Ignored while it is asked. With a title it can also be answered by sending, and the answer
    // has a word of its own where the title is empty.
    void ask(std::weak_ptr<KLMActionsheetViewDelegate> delegate,
             const std::optional<std::string>& sendTitle);
    // The stage has another shell, or none.
    void shellDidChange();
    // What the button of a sheet means; it is no longer asked then. Nothing for other sheets.
    std::optional<Answer> answered(const KLMActionsheetView& sheet, int button);
    // Nobody can answer it any more.
    void drop();
    // Null while it is not asked.
    const std::shared_ptr<KLMActionsheetView>& sheet() const { return _sheet; }

private:
    const EditorStage& _stage;
    std::shared_ptr<KLMActionsheetView> _sheet;
    // Of the phone's button.
    std::string _sendTitle;
};

}  // namespace kalim
