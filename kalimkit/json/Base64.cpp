#include "kalimkit/json/Base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kalim {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint32_t noDigit = 64;

constexpr std::array<std::uint8_t, 256> valuesOfDigits() {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::size_t i = 0; i < digits.size(); ++i)
        values[static_cast<unsigned char>(digits[i])] = static_cast<std::uint8_t>(i);
    return values;
}

std::uint32_t byteAt(std::string_view bytes, std::size_t place) {
    return place < bytes.size() ? static_cast<unsigned char>(bytes[place]) : 0;
}

}  // namespace

std::string base64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::uint32_t three =
            byteAt(bytes, i) << 16U | byteAt(bytes, i + 1) << 8U | byteAt(bytes, i + 2);
        text += digits[three >> 18U];
        text += digits[three >> 12U & 63U];
        text += i + 1 < bytes.size() ? digits[three >> 6U & 63U] : '=';
        text += i + 2 < bytes.size() ? digits[three & 63U] : '=';
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text) {
    static constexpr std::array<std::uint8_t, 256> values = valuesOfDigits();
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && !text.empty() && text.back() == '=') {
        text.remove_suffix(1);
        ++padding;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char digit : text) {
        const std::uint32_t value = values[static_cast<unsigned char>(digit)];
        if (value == noDigit) return std::nullopt;
        bits = bits << 6U | value;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count & 0xFFU);
    }
    // Bits that belong to no byte are zero, so that there is one text for given bytes.
    if ((bits & ((1U << count) - 1)) != 0) return std::nullopt;
    return bytes;
}

}  // namespace kalim
