#include "kalimkit/gfx/text/DirectedRun.h"

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

constexpr std::string_view leftToRightOverride = "\u202D";
constexpr std::string_view rightToLeftOverride = "\u202E";
constexpr std::string_view endOfOverride = "\u202C";
constexpr std::string_view wordJoiner = "\u2060";

// An embedding, an override, an isolate, or the end of one.
bool isFormat(char32_t value) {
    return (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069);
}

}  // namespace

std::string directedRun(std::string_view run, bool isRightToLeft) {
    std::string result(isRightToLeft ? rightToLeftOverride : leftToRightOverride);
    result.reserve(run.size() + 2 * endOfOverride.size());
    for (std::size_t offset = 0; offset < run.size();) {
        const CodePoint next = decodeUtf8(run, offset);
        result += isFormat(next.value) ? wordJoiner : run.substr(offset, next.byteCount);
        offset += next.byteCount;
    }
    return result += endOfOverride;
}

}  // namespace kalim::gfx
