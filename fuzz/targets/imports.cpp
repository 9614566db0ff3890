#include "fuzz/Decoding.h"
#include "kalimkit/codec/ImportedFormat.h"

// The formats of libraries that are loaded when they are wanted are read for what the tree keeps:
// to find new faults of theirs is not for here, where no other process bears them.
KALIM_FUZZ(imports, input) {
    using enum kalim::codec::ImportedFormat;
    const auto format = kalim::codec::importedFormat(input);
#ifndef KALIM_FUZZ_REPLAY
    if (format == Tiff || format == Avif || format == Heic) return;
#endif
    if (format != None) kalim::fuzz::readPicture(input);
}
