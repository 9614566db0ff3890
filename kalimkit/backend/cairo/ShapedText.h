#pragma once

#include <pango/pango.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Rect.h"

namespace kalim::gfx {

// Releases one reference.
struct GObjectRelease {
    void operator()(void* object) const { g_object_unref(object); }
};

// A text as Pango takes it: the replacement character stands for bytes that are no UTF-8 and for
// NUL, at which Pango would end.
struct MendedText {
    explicit MendedText(std::string_view text);

    std::string utf8;
    // Where each code point begins in the text as given.
    std::vector<std::size_t> offsets;
};

// One run of text shaped in one font. Its measures are in points and do not depend on where or how
// large it is drawn.
class ShapedText {
public:
    // What is drawn in one font.
    struct Run {
        PangoLayoutRun* glyphs = nullptr;
        // Points from the start of the baseline.
        double x = 0;
        // The font draws it in colours of its own, which an outline cannot show.
        bool isColor = false;
    };

    ShapedText(PangoContext* context, const PangoFontDescription* font, std::string_view text,
               bool hasAddedFonts);

    PangoLayoutLine* line() const;
    // Lists the advance of each grapheme in the text's order, in points.
    const std::vector<double>& advances() const { return _advances; }
    // The box of what is drawn, seen from the start of the baseline.
    const Rect& inkBounds() const { return _inkBounds; }
    // From left to right.
    const std::vector<Run>& runs() const { return _runs; }
    bool hasColorGlyphs() const;

private:
    void findRuns();
    void measureAdvances();

    std::unique_ptr<PangoLayout, GObjectRelease> _layout;
    std::vector<double> _advances;
    Rect _inkBounds;
    std::vector<Run> _runs;
};

}  // namespace kalim::gfx
