#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// All answer with nothing on success, else with a message that names the path and the reason.

// Fills `bytes` with the whole file; leaves it empty after an error. A file longer than `maxBytes`
// is an error.
KALIM_API std::optional<std::string> readFile(const std::string& path, Bytes& bytes,
                                              std::uint64_t maxBytes = std::uint64_t{1} << 30);

// Bytes that tell what a file is.
constexpr std::size_t startLength = 16;

// The same, but reads on only where `goesOn` says so of the first bytes, and leaves these
// otherwise. A file that is shorter than them is read as it is.
KALIM_API std::optional<std::string> readFileIf(const std::string& path, Bytes& bytes,
                                                std::uint64_t maxBytes,
                                                const std::function<bool(ByteSpan start)>& goesOn);

// Replaces or makes a file in one step: written beside, synced and renamed, so that the path holds
// either all of the old or all of the new. An existing file keeps its mode; a symbolic link stays
// and its target is replaced; a pipe or device is written to. After an error the old file is
// untouched and nothing else is left behind. A file that may not be written is not replaced.
KALIM_API std::optional<std::string> writeFileAtomically(const std::string& path, ByteSpan bytes);

// Makes a file in one step and never in the place of another: where anything has the path,
// `isTaken` becomes true, and that is the error. After an error nothing is left behind.
KALIM_API std::optional<std::string> writeNewFile(const std::string& path, ByteSpan bytes,
                                                  bool& isTaken);

}  // namespace kalim::codec
