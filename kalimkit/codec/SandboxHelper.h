#pragma once

namespace kalim::codec {

// The helper's life: does what is asked at the socket, a job at a time, each in a process of its
// own, until the other end is gone. All other open files are closed.
[[noreturn]] void runSandboxHelper(int socket);

}  // namespace kalim::codec
