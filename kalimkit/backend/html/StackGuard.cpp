#include <cstdint>
#include <cstdlib>

// Debian's libc++ for WebAssembly is compiled with stack protection, but wasi's C library does not
// come with the two names that it needs. WebAssembly's own memory safety keeps the return addresses
// out of reach, so a fixed guard does.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
std::uintptr_t __stack_chk_guard = 0x6B616C69;

[[noreturn]] void __stack_chk_fail() {
    std::abort();
}
}
// NOLINTEND(bugprone-reserved-identifier)
