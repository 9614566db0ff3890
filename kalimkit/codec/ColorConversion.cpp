#include "kalimkit/codec/ColorConversion.h"

#include <lcms2.h>

#include <algorithm>
#include <cstdlib>

namespace kalim::codec {

namespace {

using Samples = ColorConversion::Samples;
using ProfileHandle = std::unique_ptr<void, decltype(&cmsCloseProfile)>;

// The largest profiles in use, for printing presses, have less than half of this.
constexpr std::size_t maxProfileBytes = std::size_t{8} << 20;

cmsUInt32Number formatOf(Samples samples) {
    switch (samples) {
        case Samples::Bgra:
            return TYPE_BGRA_8;
        case Samples::GreyBgra:
            return COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | BYTES_SH(1);
        case Samples::Ink:
            return TYPE_CMYK_8;
        case Samples::MissingInk:
            return TYPE_CMYK_8_REV;
    }
    return 0;
}

cmsColorSpaceSignature spaceOf(Samples samples) {
    switch (samples) {
        case Samples::Bgra:
            return cmsSigRgbData;
        case Samples::GreyBgra:
            return cmsSigGrayData;
        case Samples::Ink:
        case Samples::MissingInk:
            return cmsSigCmykData;
    }
    return cmsSigRgbData;
}

// Other classes of profile describe no picture but a change from one profile to another.
bool describesSamples(cmsHPROFILE profile, Samples samples) {
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
    return cmsGetColorSpace(profile) == spaceOf(samples) &&
           (kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
            kind == cmsSigColorSpaceClass);
}

}  // namespace

std::unique_ptr<ColorConversion> ColorConversion::make(ByteSpan profile, Samples samples) {
    std::unique_ptr<ColorConversion> conversion = makeAny(profile, samples, Direction::ToSrgb);
    if (!conversion || !conversion->changesColors(samples)) return nullptr;
    return conversion;
}

std::unique_ptr<ColorConversion> ColorConversion::makeBack(ByteSpan profile) {
    return makeAny(profile, Samples::Bgra, Direction::FromSrgb);
}

bool ColorConversion::fits(ByteSpan profile, Samples samples) {
    return makeAny(profile, samples, Direction::ToSrgb) != nullptr;
}

std::unique_ptr<ColorConversion> ColorConversion::makeAny(ByteSpan profile, Samples samples,
                                                          Direction direction) {
    if (profile.empty() || profile.size() > maxProfileBytes) return nullptr;
    const ProfileHandle own(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())),
        cmsCloseProfile);
    if (!own || !describesSamples(own.get(), samples)) return nullptr;
    const ProfileHandle srgb(cmsCreate_sRGBProfile(), cmsCloseProfile);
    if (!srgb) return nullptr;
    const bool isBack = direction == Direction::FromSrgb;
    const ProfileHandle& source = isBack ? srgb : own;
    const ProfileHandle& target = isBack ? own : srgb;
    // Before there is a transform, which nobody would delete if there were no memory for it.
    std::unique_ptr<ColorConversion> conversion(new ColorConversion);
    conversion->_transform =
        cmsCreateTransform(source.get(), isBack ? TYPE_BGRA_8 : formatOf(samples), target.get(),
                           TYPE_BGRA_8, INTENT_PERCEPTUAL, 0);
    if (!conversion->_transform) return nullptr;
    return conversion;
}

ColorConversion::~ColorConversion() {
    if (_transform) cmsDeleteTransform(_transform);
}

void ColorConversion::convertRow(const std::uint8_t* samples, std::uint8_t* bgra,
                                 std::size_t pixelCount) const {
    cmsDoTransform(_transform, samples, bgra, static_cast<cmsUInt32Number>(pixelCount));
}

// There are many profiles that say "sRGB" and mean it, so colours are compared and not the bytes of
// profiles. Two steps of difference come from the rounding of their tables.
bool ColorConversion::changesColors(Samples samples) const {
    if (samples == Samples::Ink || samples == Samples::MissingInk) return true;
    constexpr int step = 51;
    for (int blue = 0; blue < 256; blue += step) {
        for (int green = 0; green < 256; green += step) {
            for (int red = 0; red < 256; red += step) {
                if (samples == Samples::GreyBgra && (green != blue || red != blue)) continue;
                const std::uint8_t before[] = {static_cast<std::uint8_t>(blue),
                                               static_cast<std::uint8_t>(green),
                                               static_cast<std::uint8_t>(red), 255};
                std::uint8_t after[4] = {};
                convertRow(before, after, 1);
                const bool isNear = std::equal(before, before + 3, after,
                                               [](int a, int b) { return std::abs(a - b) <= 2; });
                if (!isNear) return true;
            }
        }
    }
    return false;
}

}  // namespace kalim::codec
