#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace kalim::store {

// Tells which works are held by an editor that runs: a byte of a file beside the database is locked
// for each. The system lets go of it when the editor ends, however it does; a process number could
// be another process's by then.
class WorkLocks {
public:
    // The file is made at the first lock.
    explicit WorkLocks(std::string path) : _path(std::move(path)) {}
    ~WorkLocks();
    WorkLocks(const WorkLocks&) = delete;
    WorkLocks& operator=(const WorkLocks&) = delete;

    // Whether the work was free and is held now.
    bool take(std::int64_t work);
    // The same, but waits a little for an editor that was killed: the system lets go of what such a
    // one held once its memory is taken back.
    bool takeSoon(std::int64_t work);
    void release(std::int64_t work);
    bool isTaken(std::int64_t work);
    bool isMine(std::int64_t work) const { return _mine.contains(work); }
    // Whether any work is another editor's.
    bool areOthersThere();

private:
    bool open(bool makes);
    bool set(short type, std::int64_t work) const;
    bool isOthers(std::int64_t first, std::int64_t count);

    std::string _path;
    int _file = -1;
    std::set<std::int64_t> _mine;
};

}  // namespace kalim::store
