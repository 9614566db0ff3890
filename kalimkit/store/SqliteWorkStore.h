#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/WorkStore.h"

namespace kalim::store {

class Database;
class Statement;
class WorkLocks;

// Works in a database file that several editors may share, each of which holds its own works. All
// answers come at once, and a step is written when record() returns: it outlives the process, and
// the machine's sudden end may cost the last ones at most, never the database.
//
// The file and its folder are made when the first work begins, readable for the user alone; a list
// makes neither. Nothing of a work that was removed is left in them. A file that is damaged is set
// aside as "NAME.damaged", unless another editor is at it, and never removed but by
// forgetSetAside(); one that a newer version has written is left alone.
class KALIM_API SqliteWorkStore : public ui::WorkStore {
public:
    // $XDG_STATE_HOME/kalimkit/works.sqlite, in ~/.local/state where that is not set; empty where
    // there is no home either.
    static std::string usualPath();

    // An absolute path; with an empty one no work can begin.
    explicit SqliteWorkStore(std::string path);
    ~SqliteWorkStore() override;
    SqliteWorkStore(const SqliteWorkStore&) = delete;
    SqliteWorkStore& operator=(const SqliteWorkStore&) = delete;

    std::string begin(const ui::WorkStart& start) override;
    void record(const std::string& id, const std::string& step) override;
    void end(const std::string& id) override;
    void list(const Listed& listed) override;
    void open(const std::string& id, const Opened& opened) override;
    void forget(const std::string& id) override;

    // Removes the files that were damaged; how many.
    int forgetSetAside();

private:
    bool connect(bool makes);
    int prepareDatabase();
    int makeTables();
    int insert(std::int64_t work, const ui::WorkStart& start);
    ui::Work read(std::int64_t work, int& code);
    void remove(std::int64_t work);
    int erase(std::int64_t work);
    void disconnect();
    void fail(int code);
    void complain(const std::string& reason);

    std::string _path;
    std::unique_ptr<WorkLocks> _locks;
    std::unique_ptr<Database> _database;
    std::unique_ptr<Statement> _record;
    // Which file the path stood for when it was opened.
    std::string _identity;
    // Of the works that are held, how many steps they have.
    std::map<std::int64_t, std::int64_t> _steps;
};

}  // namespace kalim::store
