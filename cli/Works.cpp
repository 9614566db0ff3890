#include "cli/Works.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "cli/Complaint.h"
#include "cli/StandardOutput.h"
#include "kalimkit/codec/TerminalText.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/store/SqliteWorkStore.h"

namespace kalim::cli {

namespace {

using Summaries = std::vector<ui::WorkSummary>;

Summaries listOf(ui::WorkStore& store) {
    Summaries works;
    store.list([&](Summaries listed) { works = std::move(listed); });
    return works;
}

std::string jsonOf(const Summaries& works) {
    JsonValue::Array list;
    for (const ui::WorkSummary& work : works) {
        list.push_back(JsonValue::Object{{"id", work.id},
                                         {"picture", work.picture},
                                         {"sha256", work.sha256},
                                         {"began", work.began},
                                         {"steps", work.steps}});
    }
    return dumpJson(list);
}

std::string lineOf(const ui::WorkSummary& work) {
    return work.id + "  " + work.began + "  " + std::to_string(work.steps) +
           (work.steps == 1 ? " step   " : " steps  ") + codec::terminalText(work.picture) +
           (work.isHeld ? "  (an editor is at it)" : "");
}

int print(const Summaries& works, bool isJson) {
    StandardOutput output;
    if (isJson) output.printLine(jsonOf(works));
    for (const ui::WorkSummary& work : works) {
        if (!isJson) output.printLine(lineOf(work));
    }
    return output.error() ? complain(*output.error()) : 0;
}

// Works that an editor is at stay; what was damaged goes as well.
int forgetAll(store::SqliteWorkStore& store, const Summaries& works) {
    for (const ui::WorkSummary& work : works)
        store.forget(work.id);
    const bool wasDamaged = store.forgetSetAside() > 0;
    if (!store.problem().empty() && !wasDamaged) return complain(store.problem());
    const Summaries left = listOf(store);
    if (!left.empty()) say("works that an editor is at stay: " + std::to_string(left.size()));
    return 0;
}

int forget(store::SqliteWorkStore& store, const Summaries& works, const std::string& id) {
    if (std::ranges::find(works, id, &ui::WorkSummary::id) == works.end()) {
        return complain("there is no unfinished work " + id);
    }
    store.forget(id);
    if (!store.problem().empty()) return complain(store.problem());
    const Summaries left = listOf(store);
    const bool isLeft = std::ranges::find(left, id, &ui::WorkSummary::id) != left.end();
    return isLeft ? complain("an editor is at the work " + id) : 0;
}

}  // namespace

int works(const WorksOptions& options) {
    store::SqliteWorkStore store(store::SqliteWorkStore::usualPath());
    const Summaries works = listOf(store);
    if (options.forgotten == "all") return forgetAll(store, works);
    if (!store.problem().empty()) return complain(store.problem());
    if (options.forgotten.empty()) return print(works, options.isJson);
    return forget(store, works, options.forgotten);
}

}  // namespace kalim::cli
