#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::codec {

// The orientation in an Exif block, which begins with its byte order, "II" or "MM". Up when the
// block names none, is damaged, or holds a value that is none of the eight.
KALIM_API gfx::ImageOrientation exifOrientation(ByteSpan exif);
// The tag's number for it, 1 to 8.
KALIM_API int exifOrientationNumber(gfx::ImageOrientation orientation);

// The other way round; Up for a number that is none of them.
gfx::ImageOrientation orientationOfExif(int number);

}  // namespace kalim::codec
