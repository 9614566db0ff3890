#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// Both answer with nothing on success, else with a message that names the path and the reason.

// Fills `bytes` with the whole file; leaves it empty after an error. A file longer than `maxBytes`
// is an error.
KALIM_API std::optional<std::string> readFile(const std::string& path, Bytes& bytes,
                                              std::uint64_t maxBytes = std::uint64_t{1} << 30);

// Replaces or makes a file in one step: written beside, synced and renamed, so that the path holds
// either all of the old or all of the new. An existing file keeps its mode; a symbolic link stays
// and its target is replaced; a pipe or device is written to. After an error the old file is
// untouched and nothing else is left behind. A file that may not be written is not replaced.
KALIM_API std::optional<std::string> writeFileAtomically(const std::string& path, ByteSpan bytes);

}  // namespace kalim::codec
