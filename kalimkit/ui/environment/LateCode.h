#pragma once

#include <functional>
#include <utility>

namespace kalim::ui {

// Code that a host may have come later than the rest, as a page has that of wide screens: whoever
// is about to use some asks. Of an environment, Environment::attachment<LateCode>(); all is there
// unless a host says otherwise.
struct LateCode {
    // Answers whether it is there. If not, the host has it come and calls `then` once it has; one
    // that is asked about meanwhile takes the place of the one before; null for what can do
    // without.
    using Question = std::function<bool(std::function<void()> then)>;
    Question question;

    bool isThere(std::function<void()> then) const {
        return !question || question(std::move(then));
    }
};

}  // namespace kalim::ui
