#pragma once

#include <memory>

#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/ui/control/Label.h"

namespace kalim {

// Lays the question before closing out as a dialog in the middle of a wide screen, under a text
// that says what it is about.
class DeskQuestion {
public:
    static KLMActionsheetView::Layouter makeLayouter();

    DeskQuestion();
    // The sheet is the phone's again.
    ~DeskQuestion();
    DeskQuestion(const DeskQuestion&) = delete;
    DeskQuestion& operator=(const DeskQuestion&) = delete;

private:
    void lay(const KLMActionsheetView& sheet, bool isUp);

    std::weak_ptr<ui::View> _panel;
    std::shared_ptr<ui::View> _head;
    std::shared_ptr<ui::Label> _text;
};

}  // namespace kalim
