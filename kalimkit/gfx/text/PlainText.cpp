#include "kalimkit/gfx/text/PlainText.h"

#include "kalimkit/gfx/Utf8.h"

namespace kalim::gfx {

namespace {

// Controls are C0, delete, and C1.
bool isControl(char32_t value) {
    return value < 0x20 || (value >= 0x7F && value < 0xA0);
}

// Lines and paragraphs that are ended without a control character.
bool isSeparator(char32_t value) {
    return value == 0x2028 || value == 0x2029;
}

bool isInvisible(char32_t value) {
    return value <= 0x20 || (value >= 0x7F && value <= 0xA0) || value == 0x1680 ||
           (value >= 0x2000 && value <= 0x200F) || (value >= 0x2028 && value <= 0x202F) ||
           (value >= 0x205F && value <= 0x2064) || value == 0x3000 || value == 0xFEFF;
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
        if (isAfterReturn || next.value == '\n' || isSeparator(next.value)) {
            result += '\n';
        } else if (next.value == '\t' || !isControl(next.value)) {
            appendUtf8(result, next.value);
        }
    }
    return result;
}

bool isBlank(std::string_view text) {
    for (std::size_t offset = 0; offset < text.size();) {
        const CodePoint next = decodeUtf8(text, offset);
        if (!isInvisible(next.value)) return false;
        offset += next.byteCount;
    }
    return true;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

}  // namespace kalim::gfx
