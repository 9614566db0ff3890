#pragma once

#include <memory>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// Makes an environment the current one for as long as it lives; the one before comes back then.
class EnvironmentScope {
public:
    explicit EnvironmentScope(std::shared_ptr<ui::Environment> environment)
        : _before(ui::Environment::install(std::move(environment))) {}
    ~EnvironmentScope() { ui::Environment::install(std::move(_before)); }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

private:
    std::shared_ptr<ui::Environment> _before;
};

}  // namespace kalim
