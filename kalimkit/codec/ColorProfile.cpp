#include "kalimkit/codec/ColorProfile.h"

#include <lcms2.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

#include "kalimkit/codec/Deflate.h"
#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;
using ProfileHandle = std::unique_ptr<void, decltype(&cmsCloseProfile)>;

// The largest profiles in use, for printing presses, have less than half of this.
constexpr std::size_t maxProfileBytes = std::size_t{8} << 20U;

// Behind the prefix stand the part's number, from 1, and how many there are.
constexpr std::string_view jpegPrefix = "ICC_PROFILE\0"sv;

Bytes joined(const std::map<int, ByteSpan>& parts) {
    Bytes profile;
    for (const auto& [number, part] : parts)
        profile.insert(profile.end(), part.begin(), part.end());
    return profile;
}

// A name, a zero byte and the method of packing stand before it.
Bytes unpacked(ByteSpan chunk) {
    const auto name = static_cast<std::size_t>(std::ranges::find(chunk, 0) - chunk.begin());
    if (name + 2 > chunk.size()) return {};
    return inflated(chunk.subspan(name + 2), maxProfileBytes).value_or(Bytes());
}

void append(std::string& text, std::uint32_t letter) {
    const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (letter < 0x80) return add(letter);
    if (letter < 0x800) {
        add(0xC0U | letter >> 6U);
    } else {
        if (letter < 0x10000) {
            add(0xE0U | letter >> 12U);
        } else {
            add(0xF0U | letter >> 18U);
            add(0x80U | (letter >> 12U & 0x3FU));
        }
        add(0x80U | (letter >> 6U & 0x3FU));
    }
    add(0x80U | (letter & 0x3FU));
}

// The library hands out a profile's units of UTF-16, each as a letter.
std::string utf8(const std::wstring& units) {
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        auto letter = static_cast<std::uint32_t>(units[i]);
        const auto next = i + 1 < units.size() ? static_cast<std::uint32_t>(units[i + 1]) : 0;
        if (letter >= 0xD800 && letter < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            letter = 0x10000 + ((letter - 0xD800) << 10U) + (next - 0xDC00);
            ++i;
        }
        const bool isLetter = letter < 0xD800 || (letter >= 0xE000 && letter <= 0x10FFFF);
        append(text, isLetter ? letter : 0xFFFD);
    }
    return text;
}

}  // namespace

Bytes colorProfile(ByteSpan file) {
    const bool isJpeg = fileFormat(file) == FileFormat::Jpeg;
    std::map<int, ByteSpan> parts;
    PictureChunks chunks(file);
    while (const auto chunk = chunks.next()) {
        if (chunk->type == chunkType("iCCP")) return unpacked(chunk->data);
        if (chunk->type == chunkType("ICCP")) return {chunk->data.begin(), chunk->data.end()};
        const std::size_t head = jpegPrefix.size() + 2;
        const bool isPart = isJpeg && chunk->type == 0xE2 && chunk->data.size() >= head &&
                            std::equal(jpegPrefix.begin(), jpegPrefix.end(), chunk->data.begin());
        if (isPart) parts.emplace(chunk->data[jpegPrefix.size()], chunk->data.subspan(head));
    }
    return joined(parts);
}

std::optional<std::string> colorProfileName(ByteSpan file) {
    return profileName(colorProfile(file));
}

std::optional<std::string> profileName(ByteSpan bytes) {
    if (bytes.empty() || bytes.size() > maxProfileBytes) return std::nullopt;
    const ProfileHandle profile(
        cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())),
        cmsCloseProfile);
    if (!profile) return std::nullopt;
    // The size counts bytes and the zero at the end.
    const cmsUInt32Number size =
        cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", nullptr, 0);
    std::wstring name(size / sizeof(wchar_t), L'\0');
    cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", name.data(), size);
    name.resize(std::min(name.find(L'\0'), name.size()));
    if (name.empty()) return std::nullopt;
    return utf8(name);
}

}  // namespace kalim::codec
