#include "kalimkit/ui/loop/Environment.h"

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

}  // namespace kalim::ui
