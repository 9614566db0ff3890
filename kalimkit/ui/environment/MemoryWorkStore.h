#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/WorkStore.h"

namespace kalim::ui {

// Works that last as long as their contents are held by somebody, for tests and for hosts without a
// place to write to. Several stores may share contents, as several editors share a file; time is
// the current environment's wall clock.
class KALIM_API MemoryWorkStore : public WorkStore {
public:
    struct Contents {
        std::vector<Work> works;
        // Counts the ids that were given.
        int begun = 0;
    };

    explicit MemoryWorkStore(std::shared_ptr<Contents> contents = std::make_shared<Contents>())
        : _contents(std::move(contents)) {}
    // Lets go of what it holds, as the end of an editor does.
    ~MemoryWorkStore() override;

    const std::shared_ptr<Contents>& contents() const { return _contents; }
    // As if the place to write to had been lost.
    void breakDown(const std::string& sentence) { report(sentence); }

    std::string begin(const WorkStart& start) override;
    void record(const std::string& id, const std::string& step) override;
    void end(const std::string& id) override;
    void list(const Listed& listed) override;
    void open(const std::string& id, const Opened& opened) override;
    void forget(const std::string& id) override;

private:
    Work* find(const std::string& id);
    bool holds(const std::string& id) const;
    void remove(const std::string& id);

    std::shared_ptr<Contents> _contents;
    // The ids of the works that this store holds.
    std::vector<std::string> _held;
};

}  // namespace kalim::ui
