#include "kalimkit/host/headless/HeadlessEnvironment.h"

#include <cmath>
#include <utility>

#include "kalimkit/host/headless/ProcessMemory.h"
#include "kalimkit/ui/control/AlertView.h"

namespace kalim {

namespace {

// 2024-01-01 00:00:00 UTC, when the run loop's clock reads 0.
constexpr double startOfTime = 1704067200;
constexpr gfx::Size screenPoints{390, 844};

}  // namespace

HeadlessEnvironment::HeadlessEnvironment(gfx::Device& device, double scale)
    : _device(device),
      _screen{scale,
              {static_cast<int>(std::lround(screenPoints.width * scale)),
               static_cast<int>(std::lround(screenPoints.height * scale))},
              true} {}

std::vector<ui::Alert> HeadlessEnvironment::takeAlerts() {
    return std::exchange(_alerts, {});
}

double HeadlessEnvironment::wallClock() const {
    return startOfTime + _loop.now();
}

std::optional<double> HeadlessEnvironment::usedMemory() const {
    return _hasSetMemory ? _usedMemory : residentMemory();
}

std::optional<double> HeadlessEnvironment::availableMemory() const {
    return _hasSetMemory ? _availableMemory : freeMemory();
}

void HeadlessEnvironment::setMemory(std::optional<double> used, std::optional<double> available) {
    _hasSetMemory = true;
    _usedMemory = used;
    _availableMemory = available;
}

std::string HeadlessEnvironment::localizedString(const std::string& key) const {
    const auto text = _texts.find(key);
    if (text != _texts.end()) return text->second;
    return _languages ? _languages->text(key) : key;
}

std::string HeadlessEnvironment::localizedCount(const std::string& key, std::int64_t count) const {
    const bool isOwn = _texts.contains(key);
    return isOwn || !_languages ? localizedString(key) : _languages->text(key, count);
}

void HeadlessEnvironment::setLanguage(std::string_view locale) {
    _languages.emplace().choose(locale);
    setReadsRightToLeft(localizedString("@direction") == "rtl");
}

void HeadlessEnvironment::setLocalizedString(const std::string& key, std::string text) {
    _texts[key] = std::move(text);
}

void HeadlessEnvironment::presentAlert(const ui::Alert& alert) {
    _alerts.push_back({alert.title, alert.message, alert.buttons, {}});
    if (_showsAlerts && keyWindow()) {
        ui::AlertView::show(*keyWindow(), alert);
    } else {
        Environment::presentAlert(alert);
    }
}

bool HeadlessEnvironment::answerPick(const std::optional<gfx::ImageRef>& picked) {
    const Picked waiting = std::exchange(_picked, {});
    if (waiting) waiting(picked);
    return static_cast<bool>(waiting);
}

std::optional<bool> HeadlessEnvironment::userDefault(const std::string& key) const {
    const auto value = _defaults.find(key);
    return value == _defaults.end() ? std::nullopt : std::optional(value->second);
}

void HeadlessEnvironment::textInputChanged(ui::TextView* focused) {
    if (!focused) keyboard().hide();
}

}  // namespace kalim
