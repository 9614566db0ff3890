#pragma once

#include <new>

#include "kalimkit/host/seat/SeatEnvironment.h"

namespace kalim {

// Tells the user what does not fit in memory, who still has the work done so far. For hosts that
// are built with exceptions.
class MemoryGuard {
public:
    template <typename Work>
    void run(SeatEnvironment& environment, const Work& work) {
        try {
            work();
            _isShort = false;
        } catch (const std::bad_alloc&) {
            // Once, where every frame is too much.
            if (!_isShort) environment.tell("内存不足");
            _isShort = true;
        }
    }

private:
    // The last piece of work did not fit.
    bool _isShort = false;
};

}  // namespace kalim
