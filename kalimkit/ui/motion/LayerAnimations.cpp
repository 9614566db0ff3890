#include "kalimkit/ui/motion/LayerAnimations.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "kalimkit/ui/motion/Mix.h"

namespace kalim::ui {

namespace {

// Moments closer than this are the same one.
constexpr Time tolerance = 1e-9;

double lengthOf(const LayerAnimation& animation) {
    if (!std::isfinite(animation.duration) || animation.duration <= 0) return 0;
    const double rounds = animation.repeatCount > 0 ? animation.repeatCount : 1;
    return animation.duration * rounds;
}

// Seconds into the round that is on.
double timeInRound(const LayerAnimation& animation, double elapsed) {
    const double duration = animation.duration;
    if (!(duration > 0)) return 0;
    const double length = lengthOf(animation);
    const double time = std::clamp(elapsed, 0.0, length);
    const double inRound = std::fmod(time, duration);
    // The very end belongs to the last round, not to one that would follow.
    const bool isAtEnd = time > 0 && length - time < tolerance;
    const bool isWhole = inRound < tolerance || duration - inRound < tolerance;
    return isAtEnd && isWhole ? duration : inRound;
}

// How far the part has come at this time of the round; nothing while it has no say.
std::optional<double> shareOf(const BasicAnimation& part, double time) {
    const double way = std::isfinite(part.duration) ? std::max(part.duration, 0.0) : 0;
    const double elapsed = time - part.beginTime;
    const double length = part.autoreverses ? way * 2 : way;
    if (!(elapsed >= -tolerance)) return std::nullopt;
    if (elapsed > length + tolerance && !part.staysAtEnd) return std::nullopt;
    if (elapsed >= length - tolerance) return part.autoreverses ? 0 : 1;
    const double there = elapsed <= way ? elapsed : length - elapsed;
    return ease(part.curve, there / way);
}

// A colour that is missing on both sides leaves the layer's own.
std::optional<gfx::Color> colorOf(const BasicAnimation& part, double share) {
    const gfx::Color first = part.fromColor ? *part.fromColor : gfx::Color{0, 0, 0, 0};
    const gfx::Color second = part.toColor ? *part.toColor : first.withAlpha(0);
    if (!part.fromColor && !part.toColor) return std::nullopt;
    return mix(part.fromColor ? first : second.withAlpha(0), second, share);
}

void apply(const BasicAnimation& part, double share, LayerValues& values) {
    const double value = mix(part.from, part.to, share);
    if (!std::isfinite(value)) return;
    switch (part.property) {
        case AnimatedProperty::Opacity:
            values.opacity = std::clamp(value, 0.0, 1.0);
            break;
        case AnimatedProperty::Scale:
            values.scale = value;
            break;
        case AnimatedProperty::Rotation:
            values.rotation = value;
            break;
        case AnimatedProperty::StrokeStart:
            values.strokeStart = std::clamp(value, 0.0, 1.0);
            break;
        case AnimatedProperty::StrokeEnd:
            values.strokeEnd = std::clamp(value, 0.0, 1.0);
            break;
        case AnimatedProperty::StrokeColor:
            values.strokeColor = colorOf(part, share);
            break;
        case AnimatedProperty::LineWidth:
            values.lineWidth = std::max(value, 0.0);
            break;
    }
}

}  // namespace

void LayerAnimations::add(const LayerAnimation& animation, std::string key, Time now) {
    remove(key);
    _playing.push_back({std::move(key), animation, now, now + lengthOf(animation)});
    dropOver(now);
}

bool LayerAnimations::remove(const std::string& key) {
    return std::erase_if(_playing, [&](const Playing& playing) { return playing.key == key; }) > 0;
}

void LayerAnimations::dropOver(Time now) {
    std::erase_if(_playing, [now](const Playing& playing) {
        return !playing.animation.staysAtEnd && playing.end <= now + tolerance;
    });
}

void LayerAnimations::jumpToEnd() {
    std::erase_if(_playing, [](const Playing& playing) {
        return !playing.animation.staysAtEnd || std::isinf(playing.end);
    });
    for (Playing& playing : _playing) {
        playing.start -= playing.end;
        playing.end = 0;
    }
}

bool LayerAnimations::isRunning(Time now) const {
    return std::ranges::any_of(
        _playing, [now](const Playing& playing) { return playing.end > now + tolerance; });
}

std::vector<std::string> LayerAnimations::runningKeys(Time now) const {
    std::vector<std::string> keys;
    for (const Playing& playing : _playing) {
        if (playing.end > now + tolerance) keys.push_back(playing.key);
    }
    return keys;
}

LayerValues LayerAnimations::valuesAt(Time time) const {
    LayerValues values;
    for (const Playing& playing : _playing) {
        const double inRound = timeInRound(playing.animation, time - playing.start);
        for (const BasicAnimation& part : playing.animation.parts) {
            if (const auto share = shareOf(part, inRound)) apply(part, *share, values);
        }
    }
    return values;
}

}  // namespace kalim::ui
