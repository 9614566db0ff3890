#pragma once

#include <memory>
#include <vector>

#include "kalimkit/gfx/Device.h"
#include "tests/support/RecordingContext.h"

namespace kalim::test {

// A device that draws nothing: its surfaces write down what is painted, their pictures are blank,
// and images keep the pixels they are made of. Its measures of text are the same everywhere:
//
// - a grapheme is a code point with the combining marks (U+0300 to 036F, U+200D, U+FE00 to FE0F)
//   after it; it advances by half the font size, from U+2E80 on by the whole size;
// - a line has an ascent of 0.8, a descent of 0.2 and a leading of 0.1 times the size;
// - words are runs of anything but spaces and ASCII punctuation; a line may be broken after spaces
//   and line feeds and on both sides of a grapheme from U+2E80 on.
class RecordingDevice : public gfx::Device {
public:
    std::shared_ptr<gfx::Surface> makeSurface(gfx::Size size, double scale, bool opaque) override;
    gfx::ImageRef makeImage(gfx::Bitmap bitmap, double scale,
                            gfx::ImageOrientation orientation) override;

    std::vector<double> advances(std::string_view text, const gfx::Font& font) override;
    gfx::LineMetrics lineMetrics(const gfx::Font& font) override;
    std::vector<std::size_t> boundaries(std::string_view text, gfx::TextBoundary kind) override;
    // Hebrew alone runs from right to left.
    gfx::TextDirections directions(std::string_view paragraph, gfx::BaseDirection base) override;

    // The surfaces made here that are still alive, oldest first.
    std::vector<std::shared_ptr<gfx::Surface>> surfaces() const;
    // Finds the recording behind a surface of a device of this kind.
    static RecordingContext& recording(gfx::Surface& surface);

private:
    std::vector<std::weak_ptr<gfx::Surface>> _surfaces;
};

}  // namespace kalim::test
