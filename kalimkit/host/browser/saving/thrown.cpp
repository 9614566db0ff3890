#include <cstddef>
#include <cstdlib>

// Debian's C++ library for WebAssembly throws nothing, but what its headers throw is compiled into
// this module, as the room of picture files is written for a library that does. Only a lack of
// memory gets here; the page takes it for an error. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __cxa_allocate_exception(std::size_t /*size*/) {
    std::abort();
}

[[noreturn]] void __cxa_throw(void* /*thrown*/, void* /*type*/, void (* /*destroy*/)(void*)) {
    std::abort();
}
}
// NOLINTEND(bugprone-reserved-identifier)
