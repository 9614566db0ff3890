#pragma once

#include <pango/pango.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kalim::gfx {

// What may be done before each code point of a text, and at its end, by Pango. A long text is given
// to it in parts that are nothing to each other, and of one that differs from the last one in a
// place only what lies around that. Pango counts closing quotes to the script of what opens them,
// so where that lies in another part such a quote may be taken for another script's.
class TextDivision {
public:
    void divide(std::string_view text, PangoLanguage* language);

    // Bytes at which the code points begin.
    const std::vector<std::size_t>& offsets() const { return _offsets; }
    // One more than there are code points.
    const std::vector<PangoLogAttr>& attributes() const { return _attributes; }

private:
    // Indexes of code points of the present text.
    struct Span {
        std::size_t first = 0;
        std::size_t last = 0;
    };

    bool isApart(std::size_t index) const;
    Span changed(std::string_view text) const;
    void replace(const Span& span, std::string_view text, PangoLanguage* language);

    std::string _text;
    std::vector<std::size_t> _offsets;
    std::vector<PangoLogAttr> _attributes;
};

}  // namespace kalim::gfx
