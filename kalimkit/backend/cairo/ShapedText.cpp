#include "kalimkit/backend/cairo/ShapedText.h"

#include <pango/pangofc-font.h>

#include <algorithm>

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

double points(int pangoUnits) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE;
}

bool isColorFont(PangoFont* font) {
    if (!PANGO_IS_FC_FONT(font)) return false;
    FcBool isColor = FcFalse;
    FcPattern* const pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font));
    return FcPatternGetBool(pattern, FC_COLOR, 0, &isColor) == FcResultMatch && isColor;
}

// Pango sets a blank in the font of what comes before it, browsers in the first one. A run of its
// own is set as they do.
void setBlanksApart(PangoLayout* layout, std::string_view text, const PangoFontDescription* font) {
    PangoAttrList* const attributes = pango_attr_list_new();
    for (std::size_t at = text.find(' '); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_not_of(' ', at), text.size());
        PangoAttribute* const attribute = pango_attr_font_desc_new(font);
        attribute->start_index = static_cast<guint>(at);
        attribute->end_index = static_cast<guint>(end);
        pango_attr_list_insert(attributes, attribute);
        at = text.find(' ', end);
    }
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

// Whether there may be letters that the first font lacks, as are those from Hebrew on up to where
// punctuation begins.
bool hasFarLetters(std::string_view text) {
    return std::ranges::any_of(text, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0xD6 && byte <= 0xE1;
    });
}

}  // namespace

MendedText::MendedText(std::string_view text) {
    utf8.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint next = decodeUtf8(text, offset);
        appendUtf8(utf8, next.value == 0 ? replacementCharacter : next.value);
        offsets.push_back(offset);
        offset += next.byteCount;
    }
}

ShapedText::ShapedText(PangoContext* context, const PangoFontDescription* font,
                       std::string_view text, bool hasAddedFonts)
    : _layout(pango_layout_new(context)) {
    const MendedText mended(text);
    pango_layout_set_single_paragraph_mode(_layout.get(), TRUE);
    pango_layout_set_font_description(_layout.get(), font);
    pango_layout_set_text(_layout.get(), mended.utf8.data(), static_cast<int>(mended.utf8.size()));
    if (hasAddedFonts || hasFarLetters(mended.utf8))
        setBlanksApart(_layout.get(), mended.utf8, font);
    PangoRectangle ink;
    pango_layout_line_get_extents(line(), &ink, nullptr);
    _inkBounds = {points(ink.x), points(ink.y), points(ink.width), points(ink.height)};
    findRuns();
    measureAdvances();
}

PangoLayoutLine* ShapedText::line() const {
    return pango_layout_get_line_readonly(_layout.get(), 0);
}

bool ShapedText::hasColorGlyphs() const {
    return std::ranges::any_of(_runs, &Run::isColor);
}

void ShapedText::findRuns() {
    double x = 0;
    for (const GSList* entry = line()->runs; entry != nullptr; entry = entry->next) {
        auto* const run = static_cast<PangoLayoutRun*>(entry->data);
        _runs.push_back({run, x, isColorFont(run->item->analysis.font)});
        x += points(pango_glyph_string_get_width(run->glyphs));
    }
}

void ShapedText::measureAdvances() {
    int attributeCount = 0;
    const PangoLogAttr* const attributes =
        pango_layout_get_log_attrs_readonly(_layout.get(), &attributeCount);
    const char* const text = pango_layout_get_text(_layout.get());
    // Runs follow each other as they are seen, characters as they are written.
    std::vector<int> widths(static_cast<std::size_t>(attributeCount));
    for (const Run& run : _runs) {
        const long first = g_utf8_pointer_to_offset(text, text + run.glyphs->item->offset);
        pango_glyph_item_get_logical_widths(run.glyphs, text, widths.data() + first);
    }
    for (int i = 0; i + 1 < attributeCount; ++i) {
        if (attributes[i].is_cursor_position || _advances.empty()) _advances.push_back(0);
        _advances.back() += points(widths[static_cast<std::size_t>(i)]);
    }
}

}  // namespace kalim::gfx
