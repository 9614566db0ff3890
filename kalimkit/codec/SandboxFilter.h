#pragma once

#include <linux/filter.h>

#include <vector>

namespace kalim::codec {

// What a process of a job may ask of the system.
class SandboxFilter {
public:
    SandboxFilter();

    // From here on the calling process, which must have one thread, has memory, threads and its
    // end. What libraries try that do without is refused; anything else ends the process with
    // SIGSYS. False where the system knows no filters, or lets none be set.
    bool protect();

private:
    // Compiled once, for all processes that are forked.
    std::vector<sock_filter> _program;
};

}  // namespace kalim::codec
