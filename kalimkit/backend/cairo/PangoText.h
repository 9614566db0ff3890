#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kalimkit/backend/cairo/AddedFonts.h"
#include "kalimkit/backend/cairo/ShapedText.h"
#include "kalimkit/backend/cairo/TextDivision.h"
#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

// A device's fonts: measures text and shapes it for drawing, both from the same layout, and keeps
// what was asked for lately.
class PangoText {
public:
    PangoText();
    ~PangoText();
    PangoText(const PangoText&) = delete;
    PangoText& operator=(const PangoText&) = delete;

    std::shared_ptr<const ShapedText> shape(std::string_view text, const Font& font);
    LineMetrics lineMetrics(const Font& font);
    std::vector<std::size_t> boundaries(std::string_view text, TextBoundary kind);
    AddedFont addFont(const std::vector<std::uint8_t>& file);

private:
    struct DescriptionRelease {
        void operator()(PangoFontDescription* d) const { pango_font_description_free(d); }
    };
    using Description = std::unique_ptr<PangoFontDescription, DescriptionRelease>;

    Description describe(const Font& font) const;

    // Outlives the font map, which reads its files.
    AddedFonts _added;
    std::unique_ptr<PangoFontMap, GObjectRelease> _fontMap;
    std::unique_ptr<PangoContext, GObjectRelease> _context;
    PangoLanguage* _language;
    std::string _systemFamily;
    // What was asked for since as much as is kept had been, and before.
    std::unordered_map<std::string, std::shared_ptr<const ShapedText>> _shaped;
    std::unordered_map<std::string, std::shared_ptr<const ShapedText>> _shapedBefore;
    std::unordered_map<std::string, LineMetrics> _metrics;
    // Of the text that was asked about last, which is asked about in several ways.
    TextDivision _division;
};

}  // namespace kalim::gfx
