#include "kalimkit/codec/ColorProfiles.h"

#include <lcms2.h>
#include <webp/decode.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

using ProfileHandle = std::unique_ptr<void, decltype(&cmsCloseProfile)>;
using CurveHandle = std::unique_ptr<cmsToneCurve, decltype(&cmsFreeToneCurve)>;

// Of the primaries and the white that sRGB has.
constexpr cmsCIExyYTRIPLE primaries{{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
constexpr cmsCIExyY white{0.3127, 0.3290, 1};

CurveHandle srgbCurve() {
    constexpr cmsFloat64Number parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    constexpr cmsInt32Number powerWithLinearToe = 4;
    return {cmsBuildParametricToneCurve(nullptr, powerWithLinearToe, parameters), cmsFreeToneCurve};
}

ProfileHandle colorful(cmsToneCurve* curve) {
    cmsToneCurve* const curves[] = {curve, curve, curve};
    return {curve ? cmsCreateRGBProfile(&white, &primaries, curves) : nullptr, cmsCloseProfile};
}

void setName(cmsHPROFILE profile, const char* name) {
    cmsMLU* const text = cmsMLUalloc(nullptr, 1);
    if (!text) return;
    cmsMLUsetASCII(text, "en", "US", name);
    cmsWriteTag(profile, cmsSigProfileDescriptionTag, text);
    cmsMLUfree(text);
}

ProfileHandle opened(ByteSpan profile) {
    return {cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())),
            cmsCloseProfile};
}

// The library notes when it has made a profile.
void setDate(Bytes& profile) {
    constexpr std::size_t place = 24;
    constexpr std::uint8_t firstOf2000[] = {0x07, 0xD0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    std::ranges::copy(firstOf2000, profile.begin() + place);
}

Bytes bytesOf(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile, nullptr, &size)) return {};
    Bytes bytes(size);
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size)) return {};
    setDate(bytes);
    return bytes;
}

void append(Bytes& bytes, ByteSpan more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// Behind the prefix stand the part's number, from 1, and how many there are.
Bytes jpegSegments(ByteSpan profile) {
    constexpr std::uint8_t prefix[] = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0};
    constexpr std::size_t longest = 65533 - sizeof prefix - 2;
    const std::size_t count = (profile.size() + longest - 1) / longest;
    Bytes segments;
    if (count > 255) return segments;
    for (std::size_t number = 1; number <= count; ++number) {
        const ByteSpan part = profile.first(std::min(longest, profile.size()));
        profile = profile.subspan(part.size());
        const std::size_t length = 2 + sizeof prefix + 2 + part.size();
        append(segments, Bytes{0xFF, 0xE2, static_cast<std::uint8_t>(length >> 8U),
                               static_cast<std::uint8_t>(length)});
        append(segments, prefix);
        append(segments,
               Bytes{static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(count)});
        append(segments, part);
    }
    return segments;
}

// Readers expect JFIF's segment, where there is one, before all others.
void addToJpeg(Bytes& file, ByteSpan profile) {
    const bool hasJfif = file.size() > 6 && file[2] == 0xFF && file[3] == 0xE0;
    const std::size_t place = hasJfif ? 4 + (std::size_t{file[4]} << 8U | file[5]) : 2;
    const Bytes segments = jpegSegments(profile);
    if (place > file.size()) return;
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(place), segments.begin(),
                segments.end());
}

void appendLittleEndian(Bytes& bytes, std::size_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> 8U * i));
}

// The chunk that stands first where there are others besides the picture's; these flags say which.
constexpr std::uint8_t hasProfile = 0x20;
constexpr std::uint8_t hasAlpha = 0x10;

Bytes extendedHeader(ByteSpan file) {
    WebPBitstreamFeatures features{};
    if (WebPGetFeatures(file.data(), file.size(), &features) != VP8_STATUS_OK) return {};
    Bytes chunk{'V', 'P', '8', 'X', 10, 0, 0, 0, 0, 0, 0, 0};
    if (features.has_alpha != 0) chunk[8] = hasAlpha;
    appendLittleEndian(chunk, static_cast<std::size_t>(features.width - 1), 3);
    appendLittleEndian(chunk, static_cast<std::size_t>(features.height - 1), 3);
    return chunk;
}

void addToWebp(Bytes& file, ByteSpan profile) {
    constexpr std::size_t start = 12;
    constexpr std::size_t flags = start + 8;
    const PictureChunk first = PictureChunks(file).next().value_or(PictureChunk());
    Bytes chunks;
    if (first.type != chunkType("VP8X")) {
        chunks = extendedHeader(file);
        if (chunks.empty()) return;
        file.insert(file.begin() + start, chunks.begin(), chunks.end());
    }
    constexpr std::size_t headerSize = 18;
    if (file.size() < start + headerSize) return;
    file[flags] |= hasProfile;
    chunks = {'I', 'C', 'C', 'P'};
    appendLittleEndian(chunks, profile.size(), 4);
    append(chunks, profile);
    if (profile.size() % 2 != 0) chunks.push_back(0);
    file.insert(file.begin() + start + headerSize, chunks.begin(), chunks.end());
    Bytes length;
    appendLittleEndian(length, file.size() - 8, 4);
    std::ranges::copy(length, file.begin() + 4);
}

}  // namespace

Bytes srgbProfile(bool isGrey) {
    const CurveHandle curve = srgbCurve();
    const ProfileHandle profile =
        isGrey ? ProfileHandle(cmsCreateGrayProfile(cmsD50_xyY(), curve.get()), cmsCloseProfile)
               : colorful(curve.get());
    if (!profile) return {};
    setName(profile.get(), isGrey ? "sRGB grey" : "sRGB");
    return bytesOf(profile.get());
}

Bytes tidiedProfile(ByteSpan profile) {
    return bytesOf(opened(profile).get());
}

Bytes colorfulProfile(ByteSpan greyProfile) {
    const ProfileHandle grey = opened(greyProfile);
    if (!grey) return {};
    auto* const curve = static_cast<cmsToneCurve*>(cmsReadTag(grey.get(), cmsSigGrayTRCTag));
    const ProfileHandle profile = colorful(curve);
    return bytesOf(profile.get());
}

void addProfile(Bytes& file, ByteSpan profile) {
    if (profile.empty()) return;
    if (fileFormat(file) == FileFormat::Jpeg) addToJpeg(file, profile);
    if (fileFormat(file) == FileFormat::Webp) addToWebp(file, profile);
}

}  // namespace kalim::codec
