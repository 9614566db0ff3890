#include "kalimkit/codec/Md5.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

using State = std::array<std::uint32_t, 4>;

constexpr std::array<std::array<int, 4>, 4> turns{
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};

// The whole parts of the sines of 1 to 64, times 2^32.
std::array<std::uint32_t, 64> makeSines() {
    std::array<std::uint32_t, 64> sines{};
    for (std::size_t i = 0; i < sines.size(); ++i)
        sines[i] = static_cast<std::uint32_t>(
            std::floor(std::abs(std::sin(static_cast<double>(i + 1))) * 4294967296.0));
    return sines;
}

void addBlock(State& state, ByteSpan block) {
    static const std::array<std::uint32_t, 64> sines = makeSines();
    auto [a, b, c, d] = state;
    for (std::size_t i = 0; i < 64; ++i) {
        std::uint32_t mixed = 0;
        std::size_t word = 0;
        switch (i / 16) {
            case 0:
                mixed = (b & c) | (~b & d);
                word = i;
                break;
            case 1:
                mixed = (d & b) | (~d & c);
                word = (5 * i + 1) % 16;
                break;
            case 2:
                mixed = b ^ c ^ d;
                word = (3 * i + 5) % 16;
                break;
            default:
                mixed = c ^ (b | ~d);
                word = 7 * i % 16;
        }
        mixed += a + sines[i] + littleEndian(block.subspan(word * 4, 4));
        a = d;
        d = c;
        c = b;
        b += std::rotl(mixed, turns[i / 16][i % 4]);
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

}  // namespace

std::string md5(ByteSpan bytes) {
    State state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    ByteSpan rest = bytes;
    for (; rest.size() >= 64; rest = rest.subspan(64))
        addBlock(state, rest.first(64));
    // A single bit, zeros, and at the end of a block the number of bits.
    Bytes last(rest.begin(), rest.end());
    last.push_back(0x80);
    while (last.size() % 64 != 56)
        last.push_back(0);
    for (unsigned shift = 0; shift < 64; shift += 8)
        last.push_back(static_cast<std::uint8_t>(std::uint64_t{bytes.size()} * 8 >> shift));
    for (ByteSpan block = last; !block.empty(); block = block.subspan(64))
        addBlock(state, block.first(64));
    std::string digits;
    for (const std::uint32_t part : state) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            digits += "0123456789ABCDEF"[part >> (shift + 4) & 15U];
            digits += "0123456789ABCDEF"[part >> shift & 15U];
        }
    }
    return digits;
}

}  // namespace kalim::codec
