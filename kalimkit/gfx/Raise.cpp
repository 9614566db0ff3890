#include "kalimkit/gfx/Raise.h"

#include <utility>

#if !defined(__cpp_exceptions)
// Supplied by the page: throws a JavaScript Error and so never returns.
extern "C" [[noreturn]] void kalim_raise(const char* name, const char* reason);
#endif

namespace kalim {

namespace {

RaiseHandler& installedHandler() {
    static RaiseHandler handler;
    return handler;
}

}  // namespace

ProgrammingError::ProgrammingError(std::string name, std::string reason)
    : std::logic_error(name + ": " + reason), _name(std::move(name)), _reason(std::move(reason)) {}

void raise(const std::string& name, const std::string& reason) {
    // A copy, so that a handler may replace itself while it runs.
    if (const RaiseHandler handler = installedHandler()) {
        handler(name, reason);
        return;
    }
#if defined(__cpp_exceptions)
    throw ProgrammingError(name, reason);
#else
    kalim_raise(name.c_str(), reason.c_str());
#endif
}

RaiseHandler setRaiseHandler(RaiseHandler handler) {
    return std::exchange(installedHandler(), std::move(handler));
}

}  // namespace kalim
