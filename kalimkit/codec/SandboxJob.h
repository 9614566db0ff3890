#pragma once

#include <sys/types.h>

#include "kalimkit/codec/SandboxFilter.h"
#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

// The life of a process that its helper has just forked for one job: gives up all that it can do
// without, does the job, and leaves a report in the memory.
[[noreturn]] void runSandboxJob(const SandboxRequest& request, int memory, pid_t helper,
                                SandboxFilter& filter);

}  // namespace kalim::codec
