#include "kalimkit/codec/imports/Library.h"

#include <dlfcn.h>

#include <string_view>

namespace kalim::codec {

Library::Library(const char* fileName) : _handle(::dlopen(fileName, RTLD_NOW | RTLD_LOCAL)) {}

void* Library::address(const char* name) {
    void* const found = _handle ? ::dlsym(_handle, name) : nullptr;
    _lacksFunction = _lacksFunction || found == nullptr;
    return found;
}

std::string Library::advice(const char* format, const std::string& fileName) {
    // Debian's packages are called so: libtiff.so.6 comes with libtiff6.
    constexpr std::string_view middle = ".so.";
    std::string package = fileName;
    const std::size_t at = package.find(middle);
    if (at != std::string::npos) package.erase(at, middle.size());
    return std::string("to read ") + format + " files install " + package;
}

}  // namespace kalim::codec
