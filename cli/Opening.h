#pragma once

#include "kalimkit/codec/Sandbox.h"
#include "kalimkit/host/files/OpenedFile.h"

namespace kalim::cli {

// Files come from strangers.
inline FileOpening sandboxed(bool isFlat = false) {
    return {.isFlat = isFlat, .decode = codec::decodeSandboxed};
}

}  // namespace kalim::cli
