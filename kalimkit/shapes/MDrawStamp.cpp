#include "kalimkit/shapes/MDrawStamp.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "kalimkit/gfx/Utf8.h"
#include "kalimkit/image/SmallPicture.h"
#include "kalimkit/shapes/Badge.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/shapes/outline/SignOutline.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::string_view signName = "sign";
constexpr std::string_view pictureName = "picture";
constexpr ToolDetailRule detailRules[] = {{pictureName, ToolDetailRule::Type::Text, false}};

constexpr ToolProperty::Choice signs[] = {
    {"check", "对勾"}, {"cross", "叉号"}, {"warning", "警告"},          {"question", "问号"},
    {"heart", "爱心"}, {"arrow", "箭头"}, {"picture", "图片", {}, true}};
constexpr std::string_view emoji[] = {"👍", "👎", "🙂", "😂", "😮", "😢",
                                      "⭐", "🔥", "💡",    "🎉", "👀", "✅"};
constexpr ToolProperty properties[] = {{.name = signName,
                                        .type = ToolProperty::Type::Text,
                                        .text = "图案",
                                        .choices = signs,
                                        .samples = emoji},
                                       opacityProperty};

// Canvas points: a tap's stamp without a line, and what a line's width adds.
constexpr double smallestSide = 24;
constexpr double sideOfWidth = 4;
constexpr double leastSide = 8;
constexpr double hitMargin = 4;
// A finger that stays nearer to where it came down taps.
constexpr double shortestWay = 14;
// Of half the side.
constexpr double rimShare = 0.09;
constexpr double areaShare = 1 - rimShare;
// Of a font's ascent and descent: what letters and pictures of a font take of them.
constexpr double letterShare = 0.86;
constexpr double letterRimShare = 0.14;

// Whether fonts draw a text as pictures with colours of their own: symbols and emoji.
bool isPictured(std::string_view text) {
    constexpr char32_t firstSymbol = 0x2190;
    constexpr char32_t firstIdeograph = 0x2E80;
    constexpr char32_t firstEmoji = 0x1F000;
    constexpr char32_t lastEmoji = 0x1FAFF;
    const char32_t first = gfx::decodeUtf8(text, 0).value;
    return (first >= firstSymbol && first < firstIdeograph) ||
           (first >= firstEmoji && first <= lastEmoji);
}

}  // namespace

std::shared_ptr<MDrawStamp> MDrawStamp::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawStamp>(start);
}

const ToolClass& MDrawStamp::Class() {
    static const ToolClass toolClass{"MDrawStamp",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawStamp>,
                                     {.label = "{color}印章",
                                      .beginning = ToolBeginning::TouchDown,
                                      .span = ToolSpan::Free,
                                      .toolType = 26,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

// ---- creation and dragging

// About where the finger came down, or from there to where it is.
void MDrawStamp::span(gfx::Point p) {
    const gfx::Point down = _pressed.value_or(_startPoint);
    _pressed = down;
    const bool isSideways = quarterTurns() % 2 != 0;
    const double wide = isSideways ? 1 / proportion() : proportion();
    const gfx::Point way = p - down;
    if (std::hypot(way.x, way.y) < onCanvas(shortestWay)) {
        const double side = smallestSide + sideOfWidth * std::max(lineWidth(), 0.0);
        const double longer = std::max(wide, 1.0);
        const gfx::Point half{side * wide / longer / 2, side / longer / 2};
        _startPoint = down - half;
        _endPoint = down + half;
        return;
    }
    const double height = std::max({std::abs(way.y), std::abs(way.x) / wide, leastSide});
    _startPoint = down;
    _endPoint =
        down + gfx::Point{std::copysign(height * wide, way.x), std::copysign(height, way.y)};
}

void MDrawStamp::drawMove(gfx::Point p) {
    span(p);
}

void MDrawStamp::drawUp(gfx::Point p) {
    span(p);
    const gfx::Rect box = frame();
    _startPoint = box.origin;
    _endPoint = {box.maxX(), box.maxY()};
    finalize();
}

bool MDrawStamp::isDrawVaild() const {
    const gfx::Size size = frame().size;
    return std::min(size.width, size.height) > 1;
}

bool MDrawStamp::hitTest(gfx::Point p) {
    const double margin = onCanvas(hitMargin);
    return frame().inset(-margin, -margin).contains(invertPoint(p));
}

// A corner keeps the proportions: the box grows by how far the finger goes along its diagonal.
void MDrawStamp::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    using enum MoveDirection;
    const bool isLeft = _moveDirection == TopLeft || _moveDirection == BottomLeft;
    const bool isTop = _moveDirection == TopLeft || _moveDirection == TopRight;
    const bool isCorner = isLeft || isTop || _moveDirection == BottomRight;
    const gfx::Rect box = frame();
    if (!isCorner || box.isEmpty()) return MDrawRect::moveByOffsetEndPoint(offset, end);
    const gfx::Point diagonal{isLeft ? -box.size.width : box.size.width,
                              isTop ? -box.size.height : box.size.height};
    const double square = diagonal.x * diagonal.x + diagonal.y * diagonal.y;
    const double grown = (offset.x * diagonal.x + offset.y * diagonal.y) / square;
    const double smallest = leastSide / std::min(box.size.width, box.size.height);
    const double factor = std::max(1 + grown, std::min(smallest, 1.0));
    const gfx::Point fixed{isLeft ? box.maxX() : box.minX(), isTop ? box.maxY() : box.minY()};
    const gfx::Rect grownBox = gfx::Rect::spanning(fixed, fixed + diagonal * factor);
    _startPoint = grownBox.origin;
    _endPoint = {grownBox.maxX(), grownBox.maxY()};
}

gfx::Rect MDrawStamp::frameIncludeLineWidth() const {
    return transform().apply(frame());
}

// ---- drawing

std::string MDrawStamp::sign() const {
    std::string chosen = text(signName);
    const bool lacksPicture = chosen == pictureName && !_picture;
    return chosen.empty() || lacksPicture ? std::string(signs[0].name) : chosen;
}

double MDrawStamp::proportion() const {
    if (sign() != pictureName) return 1;
    return _picture->size().width / _picture->size().height;
}

void MDrawStamp::drawContent(gfx::Context& context) {
    const gfx::GraphicsStateGuard guard(context);
    const gfx::Color paint = color() ? *color() : gfx::Color{0, 0, 0, 0};
    const gfx::Point middle = frame().center();
    context.concat(gfx::AffineTransform::quarterTurn(-quarterTurns()).about(middle));
    gfx::Size size = frame().size;
    if (quarterTurns() % 2 != 0) std::swap(size.width, size.height);
    const gfx::Rect box = gfx::Rect(middle, {}).inset(-size.width / 2, -size.height / 2);
    if (sign() == pictureName) {
        context.setInterpolation(gfx::Interpolation::High);
        return context.drawImage(*_picture, box);
    }
    const std::optional<Sign> known = signNamed(sign());
    if (!known) return drawWords(context, box);
    const BadgeGroup group(context, paint);
    const double half = std::min(size.width, size.height) / 2;
    const double reach = half * areaShare;
    const auto place = gfx::AffineTransform::scaling(reach, reach)
                           .concat(gfx::AffineTransform::translation(middle));
    fillBadge(context, known->area.transformed(place), paint, half * rimShare);
    context.setLineWidth(known->inkWidth * reach);
    context.beginPath();
    context.addPath(known->inkLines.transformed(place));
    context.stroke();
    context.beginPath();
    context.addPath(known->inkArea.transformed(place));
    context.fill();
}

// As large as the box lets it be, in its middle.
void MDrawStamp::drawWords(gfx::Context& context, const gfx::Rect& box) const {
    gfx::Device& device = ui::Environment::current().device();
    const std::string words = sign();
    gfx::Font font;
    font.bold = true;
    font.size = box.size.height;
    const auto widthOf = [&] {
        const std::vector<double> advances = device.advances(words, font);
        return std::accumulate(advances.begin(), advances.end(), 0.0);
    };
    const gfx::LineMetrics whole = device.lineMetrics(font);
    const double needed = std::max(widthOf() / box.size.width,
                                   letterShare * (whole.ascent + whole.descent) / box.size.height);
    if (!(needed > 0)) return;
    font.size /= needed;
    const gfx::LineMetrics metrics = device.lineMetrics(font);
    const gfx::Point middle = box.center();
    const double baseline = middle.y + (metrics.ascent - metrics.descent) / 2;
    const gfx::Point place{middle.x - widthOf() / 2, baseline};
    if (isPictured(words)) return context.drawText(words, place, font);
    // Letters stand out by a rim, as all else that is in the tool's colour.
    context.setTextMode(gfx::TextMode::Stroke);
    context.setLineJoin(gfx::LineJoin::Round);
    context.setLineWidth(letterRimShare * font.size);
    context.setStrokeColor(rimOf(color() ? color()->withAlpha(1) : gfx::Color{}));
    context.drawText(words, place, font);
    context.setTextMode(gfx::TextMode::Fill);
    context.drawText(words, place, font);
}

// ---- what it shows

bool MDrawStamp::setPicture(const gfx::ImageRef& image) {
    return takePicture(smallPictureText(image)) && setProperty(signName, std::string(pictureName));
}

bool MDrawStamp::takePicture(const std::string& text) {
    if (text == _pictureText) return true;
    std::optional<gfx::Bitmap> bitmap = readSmallPicture(text);
    if (!bitmap && !text.empty()) return false;
    _picture = nullptr;
    if (bitmap) {
        _picture = ui::Environment::current().device().makeImage(std::move(*bitmap), 1,
                                                                 gfx::ImageOrientation::Up);
    }
    _pictureText = _picture ? text : std::string();
    return true;
}

// A finished stamp takes the proportions of what it shows from now on, about its middle.
bool MDrawStamp::setProperty(std::string_view name, const ToolPropertyValue& value) {
    const double before = proportion();
    if (!MDrawRect::setProperty(name, value)) return false;
    const gfx::Rect box = frame();
    const double after = proportion();
    if (name != signName || after == before || box.isEmpty()) return true;
    const double longer = std::max(box.size.width, box.size.height);
    gfx::Point half{longer * std::min(after, 1.0) / 2, longer / std::max(after, 1.0) / 2};
    if (quarterTurns() % 2 != 0) std::swap(half.x, half.y);
    _startPoint = box.center() - half;
    _endPoint = box.center() + half;
    return true;
}

std::optional<std::string> MDrawStamp::spokenWords() const {
    if (sign() == pictureName) return ui::Environment::current().localizedString("图片");
    const auto* const known = std::ranges::find(signs, sign(), &ToolProperty::Choice::name);
    if (known == std::end(signs)) return sign();
    return ui::Environment::current().localizedString(std::string(known->text));
}

// ---- history and keeping

Feature MDrawStamp::getFeature() const {
    Feature feature = MDrawRect::getFeature();
    if (!_pictureText.empty()) feature.set("MDrawStamp-picture", _pictureText);
    return feature;
}

void MDrawStamp::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    const auto* const picture = feature->get<std::string>("MDrawStamp-picture");
    takePicture(picture ? *picture : std::string());
    MDrawRect::setFeature(feature);
    // Another sign has moved them.
    if (const auto* start = feature->get<gfx::Point>("MDrawLine-start")) _startPoint = *start;
    if (const auto* end = feature->get<gfx::Point>("MDrawLine-end")) _endPoint = *end;
}

ToolDetails MDrawStamp::keptDetails() const {
    ToolDetails kept;
    if (!_pictureText.empty()) kept.push_back({pictureName, _pictureText});
    return kept;
}

bool MDrawStamp::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return name == pictureName && text && takePicture(*text);
}

}  // namespace kalim
