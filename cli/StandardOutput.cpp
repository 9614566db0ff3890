#include "cli/StandardOutput.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace kalim::cli {

void StandardOutput::printLine(const std::string& line) {
    const std::string text = line + '\n';
    write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void StandardOutput::write(codec::ByteSpan bytes) {
    if (_error) return;
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() &&
                           std::fflush(stdout) == 0;
    if (!isWritten) _error = std::string("standard output: ") + std::strerror(errno);
}

}  // namespace kalim::cli
