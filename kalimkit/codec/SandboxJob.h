#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "kalimkit/codec/SandboxFilter.h"
#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

// What is to be done in the process that was forked for it.
using SandboxWork = std::function<std::optional<std::string>(std::span<const ByteSpan> inputs,
                                                             SandboxOutput& output)>;

// Closes all open files of this process but these, which become 3, 4 and so on. Standard streams
// lead nowhere, so that nothing that is opened takes their numbers; a sanitizer may go on speaking.
void keepOnly(std::span<int> descriptors);

// Takes the output of a process that has Finished.
using SandboxTaking = std::function<void(const SandboxAnswer& answer)>;

// Forks a process for the work and returns when it is gone. That gives up all it can do without,
// does the work, leaves a report in the memory, and its output is taken. Where `watched` is a
// socket whose other end goes away meanwhile, both processes end.
SandboxAnswer runSandboxJob(const SandboxRequest& request, const SandboxWork& work, int memory,
                            SandboxFilter& filter, const SandboxTaking& take, int watched = -1);

}  // namespace kalim::codec
