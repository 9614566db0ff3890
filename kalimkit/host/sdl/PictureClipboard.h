#pragma once

#include <optional>

#include "kalimkit/codec/Bytes.h"

namespace kalim::PictureClipboard {

// Pictures on the clipboard, as PNG files. SDL knows texts alone there, so the program xclip does
// it, where it is installed.

// Whether the picture is on the clipboard now.
bool put(const codec::Bytes& png);

// The picture; no bytes when there is none, nothing when the clipboard cannot be read.
std::optional<codec::Bytes> get();

}  // namespace kalim::PictureClipboard
