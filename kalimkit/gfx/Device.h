#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Surface.h"
#include "kalimkit/gfx/TextDirections.h"

namespace kalim::gfx {

// Graphemes after UAX 29, lines after UAX 14.
enum class TextBoundary { Grapheme, Word, Line };

// What came of a font that was handed over: its family, or in words what is wrong with it.
struct AddedFont {
    std::string family;
    std::string problem;

    explicit operator bool() const { return problem.empty(); }
};

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
    // The direction of what stands between an override (U+202D or U+202E) and its end (U+202C) is
    // settled; each of these is a grapheme of its own without a width.
    virtual std::vector<double> advances(std::string_view text, const Font& font) = 0;
    virtual LineMetrics lineMetrics(const Font& font) = 0;
    // Byte offsets at which the text may be divided, the start (0) and the end always among them.
    // Word boundaries are the starts and ends of words; Line those where a line may be broken.
    virtual std::vector<std::size_t> boundaries(std::string_view text, TextBoundary kind) = 0;
    // The directions of a text without line feeds, one for each of its graphemes. A device that
    // knows none lets everything run from left to right.
    virtual TextDirections directions(std::string_view paragraph, BaseDirection base);
    // Counts how often these answers have become others, as where a page gets to know more of a
    // text's signs. A TextLayout sees to that with whatever is set of it next.
    std::uint64_t textRevision() const { return _textRevision; }
    void textsChanged() { ++_textRevision; }

    // ---- fonts that a host hands over
    // Takes the bytes of a TrueType or OpenType file, or of a collection. An empty family means the
    // families added, in their order, and what they lack is taken from the system font. Faces of
    // one family are told apart by their weight and slant, and what a family lacks of these is made
    // up from what it has; so that a text set in it is broken alike wherever the same fonts were
    // added. Their lines are as high as the font says: ascent, descent and gap of its hhea table,
    // or of OS/2 where that asks for it, nothing rounded. Texts laid out before are measured anew
    // with what is set of them next, but the boxes that they were given stay, so fonts come first.
    virtual AddedFont addFont(std::vector<std::uint8_t> file);

private:
    std::uint64_t _textRevision = 0;
};

}  // namespace kalim::gfx
