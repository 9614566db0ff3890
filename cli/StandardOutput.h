#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"

namespace kalim::cli {

// What goes to standard output. It is flushed at once, so that what was printed stays printed when
// a later step fails; after an error nothing more is written.
class StandardOutput {
public:
    // The line feed is added.
    void printLine(const std::string& line);
    void write(codec::ByteSpan bytes);
    // Why something could not be written.
    const std::optional<std::string>& error() const { return _error; }

private:
    std::optional<std::string> _error;
};

}  // namespace kalim::cli
