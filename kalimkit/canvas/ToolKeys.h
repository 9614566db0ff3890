#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// Numbers the tools of a canvas in the order in which it is asked for them. No number is given
// twice, also where a new tool takes the memory of one that has gone.
class ToolKeys {
public:
    std::uint64_t keyOf(const ToolRef& tool) {
        std::uint64_t& key = _keys[tool];
        if (key == 0) key = ++_last;
        return key;
    }
    void forgetGone() {
        std::erase_if(_keys, [](const auto& entry) { return entry.first.expired(); });
    }

private:
    std::map<std::weak_ptr<MDrawTool>, std::uint64_t, std::owner_less<>> _keys;
    std::uint64_t _last = 0;
};

}  // namespace kalim
