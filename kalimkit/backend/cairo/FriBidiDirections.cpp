#include "kalimkit/backend/cairo/FriBidiDirections.h"

#include <fribidi.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

// A text as FriBidi takes it.
struct Characters {
    explicit Characters(std::string_view text) {
        values.reserve(text.size());
        offsets.reserve(text.size());
        for (std::size_t offset = 0; offset < text.size();) {
            const CodePoint next = decodeUtf8(text, offset);
            values.push_back(next.value);
            offsets.push_back(offset);
            offset += next.byteCount;
        }
    }
    FriBidiStrIndex count() const { return static_cast<FriBidiStrIndex>(values.size()); }

    std::vector<FriBidiChar> values;
    std::vector<std::size_t> offsets;
};

FriBidiParType typeOf(BaseDirection base) {
    switch (base) {
        case BaseDirection::FirstLetter:
            return FRIBIDI_PAR_ON;
        case BaseDirection::LeftToRight:
            return FRIBIDI_PAR_LTR;
        case BaseDirection::RightToLeft:
            return FRIBIDI_PAR_RTL;
    }
    return FRIBIDI_PAR_ON;
}

// What rule L1 sends where the paragraph goes: white space, isolates, and what is removed.
bool isBlank(FriBidiCharType type) {
    return type == FRIBIDI_TYPE_WS || FRIBIDI_IS_EXPLICIT_OR_BN(type) || FRIBIDI_IS_ISOLATE(type);
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

TextDirections friBidiDirections(std::string_view paragraph, std::span<const std::size_t> graphemes,
                                 BaseDirection base) {
    TextDirections result;
    if (base != BaseDirection::RightToLeft && isAscii(paragraph)) return result;
    const Characters text(paragraph);
    std::vector<FriBidiCharType> types(text.values.size());
    std::vector<FriBidiBracketType> brackets(text.values.size());
    std::vector<FriBidiLevel> levels(text.values.size());
    fribidi_get_bidi_types(text.values.data(), text.count(), types.data());
    fribidi_get_bracket_types(text.values.data(), text.count(), types.data(), brackets.data());
    FriBidiParType direction = typeOf(base);
    const FriBidiLevel highest = fribidi_get_par_embedding_levels_ex(
        types.data(), brackets.data(), text.count(), &direction, levels.data());
    result.baseLevel = FRIBIDI_IS_RTL(direction) ? 1 : 0;
    // The level of what goes with the paragraph may be all there is. No memory yields 0.
    if (highest <= 1 && result.baseLevel == 0) return result;
    result.graphemes.reserve(graphemes.size());
    std::size_t character = 0;
    for (const std::size_t offset : graphemes) {
        while (text.offsets[character] < offset)
            ++character;
        result.graphemes.push_back(
            {static_cast<std::uint8_t>(levels[character]), isBlank(types[character])});
    }
    return result;
}

}  // namespace kalim::gfx
