#include "kalimkit/ui/desk/TextPrompt.h"

#include <string_view>
#include <utility>

#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/ui/desk/DeskControl.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

// Points.
constexpr gfx::Size fieldSize{180, 34};
const gfx::Font fieldFont{"", 16};

}  // namespace

std::shared_ptr<TextPrompt> TextPrompt::show(View& anchor, const std::string& label,
                                             Handler handler) {
    if (!anchor.window()) return nullptr;
    const std::shared_ptr<TextPrompt> prompt(new TextPrompt(label, std::move(handler)));
    prompt->init({{}, fieldSize});
    const auto popover = Popover::show(anchor, prompt, {});
    // The popover holds the prompt.
    popover->setCloseHandler([weak = std::weak_ptr(prompt)] {
        if (const auto closing = weak.lock()) closing->closed();
    });
    popover->setKeyHandler([weakPrompt = std::weak_ptr(prompt), weak = std::weak_ptr(popover)](
                               std::string_view key, bool isRepeated) {
        const auto open = weak.lock();
        const auto asking = weakPrompt.lock();
        if (!open || !asking || (key != "enter" && key != "escape")) return false;
        // The key that has opened it may still be held.
        if (isRepeated) return true;
        if (key == "escape") asking->_handler = {};
        open->close();
        return true;
    });
    prompt->_field->becomeFirstResponder();
    return prompt;
}

void TextPrompt::init(const gfx::Rect& frame) {
    View::init(frame);
    _field = TextView::initWithFrame(bounds());
    _field->setFont(fieldFont);
    _field->setInset({8, 7});
    _field->setAccessibilityLabel(_label);
    addSubview(_field);
    appearanceChanged();
    Environment::current().addAppearanceObserver(
        std::static_pointer_cast<TextPrompt>(shared_from_this()));
}

void TextPrompt::appearanceChanged() {
    _field->setTextColor(gfx::makeColor(Palette::current().text));
}

void TextPrompt::closed() {
    const std::string text(gfx::trimmed(_field->text()));
    const Handler handler = std::exchange(_handler, {});
    if (handler && !text.empty()) handler(text);
}

void TextPrompt::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    context.setStrokeColor(Palette::current().track);
    context.setLineWidth(1);
    context.addPath(gfx::roundedRect(bounds().inset(0.5, 0.5), DeskControl::cornerRadius - 1));
    context.stroke();
}

}  // namespace kalim::ui
