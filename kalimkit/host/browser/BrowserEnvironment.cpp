#include "kalimkit/host/browser/BrowserEnvironment.h"

#include <cmath>
#include <limits>
#include <utility>

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

std::string localizedForm(const std::string& key, double count) {
    const auto read = [&](char* out, int room) {
        return page::localized(key.data(), lengthOf(key), count, out, room);
    };
    return readText(read).value_or(key);
}

}  // namespace

void BrowserEnvironment::setScreen(gfx::Size size, double scale, const ui::EdgeInsets& safeArea) {
    const gfx::PixelSize pixels{static_cast<int>(std::lround(size.width * scale)),
                                static_cast<int>(std::lround(size.height * scale))};
    setScreen({scale, pixels, false, safeArea});
}

double BrowserEnvironment::wallClock() const {
    return page::wallClock();
}

std::string BrowserEnvironment::localizedString(const std::string& key) const {
    return localizedForm(key, std::numeric_limits<double>::quiet_NaN());
}

std::string BrowserEnvironment::localizedCount(const std::string& key, std::int64_t count) const {
    return localizedForm(key, static_cast<double>(count));
}

// ---- what the user chooses

std::optional<bool> BrowserEnvironment::userDefault(const std::string& key) const {
    const int value = page::userDefault(key.data(), lengthOf(key));
    return value < 0 ? std::nullopt : std::optional(value != 0);
}

void BrowserEnvironment::setUserDefault(const std::string& key, bool value) {
    page::setUserDefault(key.data(), lengthOf(key), value);
}

std::optional<std::string> BrowserEnvironment::userSetting(const std::string& key) const {
    return readText([&](char* out, int room) {
        return page::userSetting(key.data(), lengthOf(key), out, room);
    });
}

void BrowserEnvironment::setUserSetting(const std::string& key, const std::string& text) {
    page::setUserSetting(key.data(), lengthOf(key), text.data(), lengthOf(text));
}

void BrowserEnvironment::announce(const std::string& text) {
    page::announce(text.data(), lengthOf(text));
}

bool BrowserEnvironment::leaveByTab() {
    page::leaveByTab();
    return true;
}

void BrowserEnvironment::pickImage(
    const std::function<void(std::optional<gfx::ImageRef>)>& picked) {
    answerPick(std::nullopt);
    _picked = picked;
    page::pickImage();
}

void BrowserEnvironment::answerPick(const std::optional<gfx::ImageRef>& image) {
    if (const auto picked = std::exchange(_picked, nullptr)) picked(image);
}

// ---- text input

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
