#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// The error that raise() throws where exceptions exist and no handler is installed. what() reads
// "name: reason".
class KALIM_API ProgrammingError : public std::logic_error {
public:
    ProgrammingError(std::string name, std::string reason);

    const std::string& name() const { return _name; }
    const std::string& reason() const { return _reason; }

private:
    std::string _name;
    std::string _reason;
};

using RaiseHandler = std::function<void(const std::string& name, const std::string& reason)>;

// Reports a mistake of the calling programmer, never a bad input of the user. The host's handler
// gets it if one is installed; when that handler returns, raise() returns and the caller goes on in
// the way its own contract says. Without a handler it throws ProgrammingError natively, and on the
// web, where the library has no exceptions, the page throws a JavaScript Error.
KALIM_API void raise(const std::string& name, const std::string& reason);

// Installs the host's handler, or none with an empty function. Returns the one it replaces.
KALIM_API RaiseHandler setRaiseHandler(RaiseHandler handler);

}  // namespace kalim
