#include "kalimkit/backend/cairo/PangoText.h"

#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace kalim::gfx {

namespace {

// The family behind an empty family name, if it is installed.
constexpr const char* systemFamily = "WenQuanYi Micro Hei";
constexpr const char* fallbackFamily = "Sans";
// It decides which glyphs unified ideographs get, and where lines of them may be broken.
constexpr const char* language = "zh-cn";
constexpr double largestFontSize = 10000;
constexpr std::size_t shapedKept = 256;
constexpr std::size_t metricsKept = 64;

std::string findSystemFamily(PangoFontMap* map) {
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(map, &families, &count);
    const bool isInstalled = std::any_of(families, families + count, [](PangoFontFamily* family) {
        return std::string_view(pango_font_family_get_name(family)) == systemFamily;
    });
    g_free(families);
    return isInstalled ? systemFamily : fallbackFamily;
}

std::string keyOf(const Font& font) {
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, "%a %d %d ", font.size, font.bold, font.italic);
    return numbers + font.family;
}

bool divides(const PangoLogAttr& attribute, TextBoundary kind) {
    switch (kind) {
        case TextBoundary::Grapheme:
            return attribute.is_cursor_position;
        case TextBoundary::Word:
            return attribute.is_word_start || attribute.is_word_end;
        case TextBoundary::Line:
            return attribute.is_line_break;
    }
    return false;
}

}  // namespace

PangoText::PangoText()
    : _fontMap(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)),
      _language(pango_language_from_string(language)) {
    // At 72 dots to the inch a point is a pixel of the layout.
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(_fontMap.get()), 72);
    _context.reset(pango_font_map_create_context(_fontMap.get()));
    pango_context_set_language(_context.get(), _language);
    // Everything that would make widths whole pixels is off, or the layout would change with the
    // scale it is drawn at.
    pango_context_set_round_glyph_positions(_context.get(), FALSE);
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(_context.get(), options);
    cairo_font_options_destroy(options);
    _systemFamily = findSystemFamily(_fontMap.get());
}

// A font map does not give its configuration back by itself.
PangoText::~PangoText() {
    if (!_added.isEmpty()) pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(_fontMap.get()), nullptr);
}

std::shared_ptr<const ShapedText> PangoText::shape(std::string_view text, const Font& font) {
    std::string key = keyOf(font) + '\n';
    key += text;
    if (const auto found = _shaped.find(key); found != _shaped.end()) return found->second;
    // What is asked for again and again outlives what was asked for once.
    if (_shaped.size() >= shapedKept) _shapedBefore = std::exchange(_shaped, {});
    auto known = _shapedBefore.extract(key);
    if (!known) {
        auto shaped = std::make_shared<const ShapedText>(_context.get(), describe(font).get(), text,
                                                         !_added.isEmpty());
        return _shaped.emplace(std::move(key), std::move(shaped)).first->second;
    }
    return _shaped.insert(std::move(known)).position->second;
}

LineMetrics PangoText::lineMetrics(const Font& font) {
    std::string key = keyOf(font);
    if (const auto found = _metrics.find(key); found != _metrics.end()) return found->second;
    if (_metrics.size() >= metricsKept) _metrics.clear();
    const std::unique_ptr<PangoFont, GObjectRelease> loaded(
        pango_font_map_load_font(_fontMap.get(), _context.get(), describe(font).get()));
    PangoFontMetrics* const metrics = pango_font_get_metrics(loaded.get(), _language);
    const auto points = [](int units) {
        return std::max(static_cast<double>(units) / PANGO_SCALE, 0.0);
    };
    const int ascent = pango_font_metrics_get_ascent(metrics);
    const int descent = pango_font_metrics_get_descent(metrics);
    const int height = pango_font_metrics_get_height(metrics);
    pango_font_metrics_unref(metrics);
    const LineMetrics result{points(ascent), points(descent), points(height - ascent - descent)};
    _metrics.emplace(std::move(key), result);
    return result;
}

std::vector<std::size_t> PangoText::boundaries(std::string_view text, TextBoundary kind) {
    _division.divide(text, _language);
    std::vector<std::size_t> result{0};
    for (std::size_t i = 1; i < _division.offsets().size(); ++i) {
        if (divides(_division.attributes()[i], kind)) result.push_back(_division.offsets()[i]);
    }
    if (!text.empty()) result.push_back(text.size());
    return result;
}

AddedFont PangoText::addFont(const std::vector<std::uint8_t>& file) {
    const bool isFirst = _added.isEmpty();
    AddedFont added = _added.add(file);
    if (!added) return added;
    PangoFcFontMap* const map = PANGO_FC_FONT_MAP(_fontMap.get());
    isFirst ? pango_fc_font_map_set_config(map, _added.config())
            : pango_fc_font_map_config_changed(map);
    _shaped.clear();
    _shapedBefore.clear();
    _metrics.clear();
    return added;
}

PangoText::Description PangoText::describe(const Font& font) const {
    Description description(pango_font_description_new());
    std::string family = _added.named(font.family);
    if (family.empty()) {
        for (const std::string& added : _added.families())
            family += added + ',';
        family += _systemFamily;
    }
    pango_font_description_set_family(description.get(), family.c_str());
    pango_font_description_set_weight(description.get(),
                                      font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(description.get(),
                                     font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    const double size = font.size > 0 ? std::min(font.size, largestFontSize) : 0;
    pango_font_description_set_absolute_size(description.get(), size * PANGO_SCALE);
    return description;
}

}  // namespace kalim::gfx
