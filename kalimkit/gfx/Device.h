#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Surface.h"

namespace kalim::gfx {

enum class TextBoundary { Grapheme, Word, Line };

// Made by a backend, held by the environment, and the only source of drawing things.
class KALIM_API Device {
public:
    virtual ~Device();

    // Size in points. An opaque surface starts black, any other transparent. Nothing for a size
    // that is empty, not finite or beyond what the backend can hold.
    virtual std::shared_ptr<Surface> makeSurface(Size size, double scale, bool opaque) = 0;
    // Takes the pixels over. Nothing for an empty bitmap.
    virtual ImageRef makeImage(Bitmap bitmap, double scale, ImageOrientation orientation) = 0;

    // ---- text measures, in points, the same at every surface scale ----------------------------
    // The advance of each grapheme of one UTF-8 run, shaped as a whole.
    virtual std::vector<double> advances(std::string_view text, const Font& font) = 0;
    virtual LineMetrics lineMetrics(const Font& font) = 0;
    // Byte offsets at which the text may be divided, the start (0) and the end always among them.
    // Word boundaries are the starts and ends of words; Line those where a line may be broken.
    virtual std::vector<std::size_t> boundaries(std::string_view text, TextBoundary kind) = 0;
};

}  // namespace kalim::gfx
