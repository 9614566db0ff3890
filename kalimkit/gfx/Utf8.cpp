#include "kalimkit/gfx/Utf8.h"

#include <cassert>

namespace kalim::gfx {

namespace {

// What a first byte announces: how many bytes follow, its own bits of the value, and the range of
// the second byte, which rules out overlong forms, surrogates and values above 10FFFF.
struct Lead {
    int following = -1;
    char32_t bits = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

Lead readLead(unsigned char byte) {
    if (byte < 0x80) return {0, byte};
    if (byte < 0xC2) return {};
    if (byte < 0xE0) return {1, char32_t(byte & 0x1F)};
    if (byte == 0xE0) return {2, 0, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0xD, 0x80, 0x9F};
    if (byte < 0xF0) return {2, char32_t(byte & 0x0F)};
    if (byte == 0xF0) return {3, 0, 0x90, 0xBF};
    if (byte < 0xF4) return {3, char32_t(byte & 0x07)};
    if (byte == 0xF4) return {3, 4, 0x80, 0x8F};
    return {};
}

}  // namespace

CodePoint decodeUtf8(std::string_view text, std::size_t offset) {
    assert(offset < text.size());
    Lead lead = readLead(static_cast<unsigned char>(text[offset]));
    if (lead.following < 0) return {replacementCharacter, 1};
    char32_t value = lead.bits;
    std::size_t length = 1;
    for (; lead.following > 0; --lead.following, ++length) {
        if (offset + length >= text.size()) return {replacementCharacter, length};
        const auto byte = static_cast<unsigned char>(text[offset + length]);
        if (byte < lead.low || byte > lead.high) return {replacementCharacter, length};
        value = (value << 6) | (byte & 0x3F);
        lead.low = 0x80;
        lead.high = 0xBF;
    }
    return {value, length};
}

void appendUtf8(std::string& text, char32_t codePoint) {
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (isSurrogate || codePoint > 0x10FFFF) codePoint = replacementCharacter;
    const auto tail = [&](int shift) {
        text += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | (codePoint >> 6));
        tail(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | (codePoint >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (codePoint >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace kalim::gfx
