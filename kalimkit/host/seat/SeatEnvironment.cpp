#include "kalimkit/host/seat/SeatEnvironment.h"

#include <cstdlib>
#include <utility>

#include "kalimkit/ui/control/AlertView.h"

namespace kalim {

namespace {

constexpr gfx::Size leastBudget{2560, 1440};

}  // namespace

void SeatEnvironment::setLanguage(std::string_view locale) {
    speak(std::string(locale));
}

void SeatEnvironment::speak(std::string language) {
    _language = std::move(language);
    setReadsRightToLeft(localizedString("@direction") == "rtl");
}

std::string SeatEnvironment::messageLocale() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value && *value) return value;
    }
    return {};
}

std::optional<gfx::Size> SeatEnvironment::areaBudget() const {
    const gfx::Size doubled{2.0 * _screen.nativeSize.width, 2.0 * _screen.nativeSize.height};
    const bool isEnough = doubled.width * doubled.height >= leastBudget.width * leastBudget.height;
    return isEnough ? doubled : leastBudget;
}

void SeatEnvironment::presentAlert(const ui::Alert& alert) {
    if (ui::Window* const window = keyWindow()) {
        ui::AlertView::show(*window, alert);
    } else {
        Environment::presentAlert(alert);
    }
}

void SeatEnvironment::tell(const std::string& title, const std::string& message) {
    // A host may have texts of its own, but none for no text.
    const std::string shown = message.empty() ? message : localizedString(message);
    presentAlert({localizedString(title), shown, {localizedString("好")}, {}});
}

}  // namespace kalim
