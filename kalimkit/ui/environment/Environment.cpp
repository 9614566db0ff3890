#include "kalimkit/ui/environment/Environment.h"

#include <cstdlib>
#include <utility>

#include "kalimkit/gfx/Raise.h"

namespace kalim::ui {

namespace {

std::shared_ptr<Environment>& installed() {
    static std::shared_ptr<Environment> environment;
    return environment;
}

}  // namespace

Environment::~Environment() = default;

Environment& Environment::current() {
    if (!installed()) {
        raise("EnvironmentException", "An environment must be installed before the first view.");
        std::abort();
    }
    return *installed();
}

bool Environment::hasCurrent() {
    return installed() != nullptr;
}

std::shared_ptr<Environment> Environment::install(std::shared_ptr<Environment> environment) {
    return std::exchange(installed(), std::move(environment));
}

void Environment::presentAlert(const Alert& alert) {
    // Copied: the answer may drop whoever holds the alert.
    if (const auto completion = alert.completion) completion(0);
}

std::optional<bool> Environment::userDefault(const std::string& key) const {
    const auto found = _userDefaults.find(key);
    return found == _userDefaults.end() ? std::nullopt : std::optional(found->second);
}

void Environment::setUserDefault(const std::string& key, bool value) {
    _userDefaults[key] = value;
}

void Environment::setAppearance(const Appearance& appearance) {
    if (std::exchange(_appearance, appearance) == appearance) return;
    const auto observers = _appearanceObservers;
    for (const auto& each : observers) {
        if (const auto observer = each.lock()) observer->appearanceChanged();
    }
}

void Environment::addAppearanceObserver(const std::weak_ptr<AppearanceObserver>& observer) {
    std::erase_if(_appearanceObservers, [](const auto& each) { return each.expired(); });
    _appearanceObservers.push_back(observer);
}

std::optional<std::string> Environment::userSetting(const std::string& key) const {
    const auto found = _userSettings.find(key);
    return found == _userSettings.end() ? std::nullopt : std::optional(found->second);
}

void Environment::setUserSetting(const std::string& key, const std::string& text) {
    _userSettings[key] = text;
}

void Environment::pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) {
    if (picked) picked(std::nullopt);
}

}  // namespace kalim::ui
