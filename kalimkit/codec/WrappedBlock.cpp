#include "kalimkit/codec/WrappedBlock.h"

#include <algorithm>
#include <charconv>

namespace kalim::codec {

std::string wrappedBlock(std::string_view kind, ByteSpan block) {
    constexpr std::size_t lengthWidth = 8;
    constexpr std::size_t lineBytes = 36;
    const std::string length = std::to_string(block.size());
    std::string text = "\n" + std::string(kind) + "\n" +
                       std::string(lengthWidth - std::min(lengthWidth, length.size()), ' ') +
                       length;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (i % lineBytes == 0) text += '\n';
        text += "0123456789abcdef"[block[i] >> 4U];
        text += "0123456789abcdef"[block[i] & 15U];
    }
    return text + "\n";
}

Bytes unwrappedBlock(std::string_view text) {
    Bytes bytes;
    for (int i = 0; i < 2; ++i) {
        text.remove_prefix(std::min(text.find_first_not_of("\r\n "), text.size()));
        text.remove_prefix(std::min(text.find('\n'), text.size()));
    }
    std::string digits(text);
    std::erase_if(digits,
                  [](char letter) { return letter == '\n' || letter == '\r' || letter == ' '; });
    for (std::size_t at = 0; at + 2 <= digits.size(); at += 2) {
        std::uint8_t byte = 0;
        const char* const end = digits.data() + at + 2;
        if (std::from_chars(digits.data() + at, end, byte, 16).ptr != end) break;
        bytes.push_back(byte);
    }
    return bytes;
}

}  // namespace kalim::codec
