#include "kalimkit/store/WorkLocks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace kalim::store {

namespace {

// Of the open file, not of the process: two editors of one process keep each other out as well, and
// nothing that is closed elsewhere lets go of it.
struct flock rangeOf(short type, std::int64_t first, std::int64_t count) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = first;
    range.l_len = count;
    return range;
}

}  // namespace

WorkLocks::~WorkLocks() {
    if (_file >= 0) ::close(_file);
}

bool WorkLocks::open(bool makes) {
    if (_file >= 0) return true;
    _file = ::open(_path.c_str(), O_RDWR | O_CLOEXEC | (makes ? O_CREAT : 0), S_IRUSR | S_IWUSR);
    return _file >= 0;
}

bool WorkLocks::take(std::int64_t work) {
    if (isMine(work) || !open(true) || !set(F_WRLCK, work)) return false;
    _mine.insert(work);
    return true;
}

bool WorkLocks::takeSoon(std::int64_t work) {
    for (int tries = 0; tries < 25 && isOthers(work, 1); ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return take(work);
}

void WorkLocks::release(std::int64_t work) {
    if (_mine.erase(work) > 0) set(F_UNLCK, work);
}

bool WorkLocks::isTaken(std::int64_t work) {
    return isMine(work) || isOthers(work, 1);
}

bool WorkLocks::areOthersThere() {
    // No length is all the rest.
    return isOthers(0, 0);
}

bool WorkLocks::set(short type, std::int64_t work) const {
    struct flock range = rangeOf(type, work, 1);
    return ::fcntl(_file, F_OFD_SETLK, &range) == 0;
}

bool WorkLocks::isOthers(std::int64_t first, std::int64_t count) {
    if (!open(false)) return false;
    struct flock range = rangeOf(F_WRLCK, first, count);
    return ::fcntl(_file, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

}  // namespace kalim::store
