#pragma once

namespace kalim::ui {

// Raises a flag for the length of a scope, whatever way it is left. Scopes of one flag do not nest.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : _flag(flag) { _flag = true; }
    ~FlagScope() { _flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& _flag;
};

}  // namespace kalim::ui
