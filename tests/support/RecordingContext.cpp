#include "tests/support/RecordingContext.h"

#include <cstdio>
#include <utility>

namespace kalim::test {

namespace {

using gfx::GraphicsState;

std::string number(double value) {
    char text[330];
    std::snprintf(text, sizeof text, "%.2f", value);
    std::string result = text;
    while (result.ends_with('0'))
        result.pop_back();
    if (result.ends_with('.')) result.pop_back();
    return result == "-0" ? "0" : result;
}

std::string describe(gfx::Point p) {
    return number(p.x) + "," + number(p.y);
}

std::string describe(const gfx::AffineTransform& t) {
    return "[" + number(t.a) + " " + number(t.b) + " " + number(t.c) + " " + number(t.d) + " " +
           number(t.tx) + " " + number(t.ty) + "]";
}

std::string describe(const gfx::Image& image) {
    const gfx::PixelSize size = image.pixelSize();
    return std::to_string(size.width) + "x" + std::to_string(size.height) + "@" +
           number(image.scale());
}

std::string describe(const gfx::Shadow& shadow) {
    return " shadow=(" + describe(shadow.offset) + ") blur=" + number(shadow.blur) + " " +
           shadow.color.hex();
}

std::string transformOf(const GraphicsState& state) {
    return state.transform.isIdentity() ? "" : " transform=" + describe(state.transform);
}

std::string interpolationName(gfx::Interpolation interpolation) {
    switch (interpolation) {
        case gfx::Interpolation::None:
            return " interpolation=none";
        case gfx::Interpolation::Low:
            return "";
        case gfx::Interpolation::High:
            return " interpolation=high";
    }
    return "";
}

// What every kind of painting has in common.
std::string compositing(const GraphicsState& state) {
    std::string text;
    if (state.alpha != 1) text += " alpha=" + number(state.alpha);
    if (state.blendMode == gfx::BlendMode::SourceIn) text += " blend=source-in";
    if (state.blendMode == gfx::BlendMode::Copy) text += " blend=copy";
    if (state.blendMode == gfx::BlendMode::Clear) text += " blend=clear";
    if (state.blendMode == gfx::BlendMode::Multiply) text += " blend=multiply";
    if (!state.antialias) text += " aliased";
    if (state.shadow) text += describe(*state.shadow);
    return text;
}

std::string fillPaint(const GraphicsState& state) {
    if (!state.fillPattern) return " " + state.fillColor.hex();
    const gfx::Pattern& pattern = *state.fillPattern;
    std::string text = " pattern=" + describe(*pattern.image);
    if (!pattern.transform.isIdentity()) text += " transform=" + describe(pattern.transform);
    return text + interpolationName(pattern.interpolation);
}

std::string strokePaint(const GraphicsState& state) {
    std::string text = " " + state.strokeColor.hex() + " width=" + number(state.lineWidth);
    if (state.lineCap == gfx::LineCap::Round) text += " cap=round";
    if (state.lineCap == gfx::LineCap::Square) text += " cap=square";
    if (state.lineJoin == gfx::LineJoin::Round) text += " join=round";
    if (state.lineJoin == gfx::LineJoin::Bevel) text += " join=bevel";
    return text;
}

std::string penOf(const GraphicsState& state) {
    const gfx::AffineTransform& t = state.transform;
    if (t.a == 1 && t.b == 0 && t.c == 0 && t.d == 1) return "";
    return " pen=[" + number(t.a) + " " + number(t.b) + " " + number(t.c) + " " + number(t.d) + "]";
}

}  // namespace

std::string describe(const gfx::Path& path) {
    std::string text;
    const gfx::Point* next = path.points().data();
    const auto append = [&](const char* letter, int count) {
        text += text.empty() ? letter : std::string(" ") + letter;
        for (; count > 0; --count)
            text += " " + describe(*next++);
    };
    for (const gfx::PathCommand command : path.commands()) {
        switch (command) {
            case gfx::PathCommand::Move:
                append("M", 1);
                break;
            case gfx::PathCommand::Line:
                append("L", 1);
                break;
            case gfx::PathCommand::Quad:
                append("Q", 2);
                break;
            case gfx::PathCommand::Cubic:
                append("C", 3);
                break;
            case gfx::PathCommand::Close:
                append("Z", 0);
                break;
        }
    }
    return "[" + text + "]";
}

std::vector<std::string> RecordingContext::takeLines() {
    return std::exchange(_lines, {});
}

void RecordingContext::onSave() {
    _clips.push_back(0);
}

void RecordingContext::onRestore() {
    if (_clips.back() > 0) _lines.push_back("unclip");
    _clips.pop_back();
}

void RecordingContext::onClip(const gfx::Path& path) {
    ++_clips.back();
    _lines.push_back("clip " + describe(path));
}

void RecordingContext::onFill(const gfx::Path& path) {
    _lines.push_back("fill " + describe(path) + fillPaint(state()) + compositing(state()));
}

void RecordingContext::onStroke(const gfx::Path& path) {
    _lines.push_back("stroke " + describe(path) + strokePaint(state()) + penOf(state()) +
                     compositing(state()));
}

void RecordingContext::onDrawRaster(const gfx::Image& image, const gfx::Rect& rect) {
    _lines.push_back("raster " + describe(image) + " rect=(" + describe(rect.origin) + "," +
                     number(rect.size.width) + "," + number(rect.size.height) + ")" +
                     transformOf(state()) + interpolationName(state().interpolation) +
                     compositing(state()));
}

void RecordingContext::onDrawText(std::string_view text, gfx::Point baseline,
                                  const gfx::Font& font) {
    const bool isFilled = state().textMode == gfx::TextMode::Fill;
    std::string line = isFilled ? "text" : "outline";
    line += " \"" + std::string(text) + "\" at=(" + describe(baseline) + ")";
    if (!font.family.empty()) line += " family=" + font.family;
    line += " size=" + number(font.size);
    if (font.bold) line += " bold";
    if (font.italic) line += " italic";
    line += isFilled ? fillPaint(state()) : strokePaint(state());
    _lines.push_back(line + transformOf(state()) + compositing(state()));
}

void RecordingContext::onBeginGroup() {
    _lines.push_back("begin group" + compositing(state()));
}

void RecordingContext::onEndGroup() {
    _lines.push_back("end group");
}

}  // namespace kalim::test
