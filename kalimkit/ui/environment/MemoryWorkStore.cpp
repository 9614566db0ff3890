#include "kalimkit/ui/environment/MemoryWorkStore.h"

#include <algorithm>
#include <optional>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

MemoryWorkStore::~MemoryWorkStore() {
    for (const std::string& id : _held) {
        if (Work* const work = find(id)) work->summary.isHeld = false;
    }
}

std::string MemoryWorkStore::begin(const WorkStart& start) {
    if (!problem().empty()) return {};
    const std::string id = std::to_string(++_contents->begun);
    const std::string began = utcTime(Environment::current().wallClock());
    _contents->works.push_back(
        {{id, start.picture, start.sha256, began, 0, true}, start.bytes, start.setUp, {}});
    _held.push_back(id);
    return id;
}

void MemoryWorkStore::record(const std::string& id, const std::string& step) {
    Work* const work = find(id);
    if (!work || !holds(id) || !problem().empty()) return;
    work->steps.push_back(step);
    work->summary.steps = work->steps.size();
}

void MemoryWorkStore::end(const std::string& id) {
    if (!holds(id)) return;
    std::erase(_held, id);
    remove(id);
}

void MemoryWorkStore::list(const Listed& listed) {
    std::vector<WorkSummary> summaries;
    for (const Work& work : _contents->works)
        summaries.push_back(work.summary);
    listed(std::move(summaries));
}

void MemoryWorkStore::open(const std::string& id, const Opened& opened) {
    Work* const work = find(id);
    if (!work || work->summary.isHeld) return opened(std::nullopt);
    work->summary.isHeld = true;
    _held.push_back(id);
    opened(Work(*work));
}

void MemoryWorkStore::forget(const std::string& id) {
    const Work* const work = find(id);
    if (work && !work->summary.isHeld) remove(id);
}

Work* MemoryWorkStore::find(const std::string& id) {
    const auto found = std::ranges::find_if(
        _contents->works, [&](const Work& work) { return work.summary.id == id; });
    return found == _contents->works.end() ? nullptr : &*found;
}

bool MemoryWorkStore::holds(const std::string& id) const {
    return std::ranges::find(_held, id) != _held.end();
}

void MemoryWorkStore::remove(const std::string& id) {
    std::erase_if(_contents->works, [&](const Work& work) { return work.summary.id == id; });
}

}  // namespace kalim::ui
