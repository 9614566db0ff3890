#include "kalimkit/host/sdl/SdlEnvironment.h"

#include <SDL.h>

#include <chrono>
#include <cstdlib>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/sdl/UserDefaults.h"
#include "kalimkit/shell/config/EnglishTexts.h"
#include "kalimkit/ui/control/AlertView.h"

namespace kalim {

namespace {

constexpr gfx::Size leastBudget{2560, 1440};

// The locale of messages, by the variables that name it.
std::string messageLocale() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value && *value) return value;
    }
    return {};
}

}  // namespace

SdlEnvironment::SdlEnvironment(double scale)
    : _device(gfx::CairoDevice::make()),
      _screen{scale, {}, false},
      _isEnglish(prefersEnglishTexts(messageLocale())),
      _userDefaults(std::make_unique<UserDefaults>(UserDefaults::usualPath())) {}

SdlEnvironment::~SdlEnvironment() = default;

double SdlEnvironment::wallClock() const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

std::optional<gfx::Size> SdlEnvironment::areaBudget() const {
    const gfx::Size doubled{2.0 * _screen.nativeSize.width, 2.0 * _screen.nativeSize.height};
    const bool isEnough = doubled.width * doubled.height >= leastBudget.width * leastBudget.height;
    return isEnough ? doubled : leastBudget;
}

std::string SdlEnvironment::localizedString(const std::string& key) const {
    return _isEnglish ? englishText(key) : key;
}

void SdlEnvironment::presentAlert(const ui::Alert& alert) {
    if (ui::Window* const window = keyWindow()) {
        ui::AlertView::show(*window, alert);
    } else {
        Environment::presentAlert(alert);
    }
}

std::string SdlEnvironment::clipboardText() {
    char* const text = SDL_GetClipboardText();
    const std::string copy = text ? text : "";
    SDL_free(text);
    return copy;
}

void SdlEnvironment::setClipboardText(const std::string& text) {
    SDL_SetClipboardText(text.c_str());
}

std::optional<bool> SdlEnvironment::userDefault(const std::string& key) const {
    return _userDefaults->value(key);
}

void SdlEnvironment::setUserDefault(const std::string& key, bool value) {
    // One that cannot be written still holds until the end of the process.
    _userDefaults->setValue(key, value);
}

}  // namespace kalim
