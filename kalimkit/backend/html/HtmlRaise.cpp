#include "kalimkit/backend/html/HtmlImports.h"

// What the library calls for a mistake of the calling programmer.
extern "C" [[noreturn]] void kalim_raise(const char* name, const char* reason) {
    kalim::gfx::page::raise(name, reason);
}
