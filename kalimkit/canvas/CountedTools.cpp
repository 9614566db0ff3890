#include "kalimkit/canvas/CountedTools.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>

namespace kalim {

namespace {

bool isAmong(const ToolRef& tool, const ToolList& list) {
    return std::ranges::find(list, tool) != list.end();
}

}  // namespace

ToolList CountedTools::recount(const ToolList& tools) {
    ToolList counted;
    std::ranges::copy_if(tools, std::back_inserter(counted),
                         [](const ToolRef& tool) { return tool->toolClass().isCounted(); });
    if (counted.empty() && _order.empty()) return {};
    ToolList leaving;
    std::ranges::copy_if(_order, std::back_inserter(leaving),
                         [&](const ToolRef& tool) { return !isAmong(tool, counted); });
    _places.takeOut(_order, leaving);
    ToolList coming;
    std::ranges::copy_if(counted, std::back_inserter(coming),
                         [&](const ToolRef& tool) { return !isAmong(tool, _order); });
    std::ranges::stable_sort(coming, {}, [](const ToolRef& tool) { return tool->count(); });
    _places.putBack(_order, std::move(coming));

    ToolList changed;
    std::map<std::pair<const ToolClass*, std::string>, int> counts;
    for (const ToolRef& tool : _order) {
        const int count = ++counts[{&tool->toolClass(), tool->countSeries()}];
        if (tool->count() == count) continue;
        tool->setCount(count);
        changed.push_back(tool);
    }
    return changed;
}

void CountedTools::forget() {
    _order.clear();
    _places = {};
}

}  // namespace kalim
