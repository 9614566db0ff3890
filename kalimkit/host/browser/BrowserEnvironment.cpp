#include "kalimkit/host/browser/BrowserEnvironment.h"

#include "kalimkit/host/browser/BrowserImports.h"
#include "kalimkit/ui/control/TextView.h"

namespace kalim {

namespace {

int lengthOf(const std::string& text) {
    return static_cast<int>(text.size());
}

// Asks for a text whose length is not known before; `read` is told where, and how much room there
// is, and answers with the whole length, below zero for none.
template <typename Read>
std::optional<std::string> readText(const Read& read) {
    std::string text(64, '\0');
    for (;;) {
        const int length = read(text.data(), lengthOf(text));
        if (length < 0) return std::nullopt;
        const bool isWhole = length <= lengthOf(text);
        text.resize(static_cast<std::size_t>(length));
        if (isWhole) return text;
    }
}

}  // namespace

double BrowserEnvironment::wallClock() const {
    return page::wallClock();
}

std::string BrowserEnvironment::localizedString(const std::string& key) const {
    const auto read = [&](char* out, int room) {
        return page::localized(key.data(), lengthOf(key), out, room);
    };
    return readText(read).value_or(key);
}

void BrowserEnvironment::presentAlert(const ui::Alert& alert) {
    page::onAlert(alert.title.data(), lengthOf(alert.title), alert.message.data(),
                  lengthOf(alert.message));
    Environment::presentAlert(alert);
}

std::string BrowserEnvironment::clipboardText() {
    return readText(page::clipboardRead).value_or("");
}

void BrowserEnvironment::setClipboardText(const std::string& text) {
    page::clipboardWrite(text.data(), lengthOf(text));
}

void BrowserEnvironment::textInputChanged(ui::TextView* focused) {
    if (!focused) {
        keyboard().hide();
        return page::textLeft();
    }
    const gfx::TextRange selected = focused->selection().range();
    const gfx::Rect caret = focused->caretRectInWindow();
    page::textFocused(focused->text().data(), lengthOf(focused->text()),
                      static_cast<int>(selected.begin), static_cast<int>(selected.end),
                      focused->markedRange().has_value(), caret.minX(), caret.minY(),
                      caret.size.height);
}

}  // namespace kalim
