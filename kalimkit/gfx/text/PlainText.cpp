#include "kalimkit/gfx/text/PlainText.h"

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

// C0, delete, and C1.
bool isControl(char32_t value) {
    return value < 0x20 || (value >= 0x7F && value < 0xA0);
}

}  // namespace

std::string plainText(std::string_view typed) {
    std::string result;
    result.reserve(typed.size());
    bool isAfterReturn = false;
    for (std::size_t offset = 0; offset < typed.size();) {
        const CodePoint next = decodeUtf8(typed, offset);
        offset += next.byteCount;
        const bool isFeedOfReturn = isAfterReturn && next.value == '\n';
        isAfterReturn = next.value == '\r';
        if (isFeedOfReturn) continue;
        if (isAfterReturn || next.value == '\n') {
            result += '\n';
        } else if (next.value == '\t' || !isControl(next.value)) {
            appendUtf8(result, next.value);
        }
    }
    return result;
}

}  // namespace kalim::gfx
