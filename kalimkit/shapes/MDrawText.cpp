#include "kalimkit/shapes/MDrawText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "kalimkit/gfx/Contrast.h"
#include "kalimkit/gfx/text/Graphemes.h"
#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/shapes/ShapeProperties.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Line width and font size are one setting. Sizes in between count as the next larger one, those
// beyond as the largest.
struct Pen {
    double lineWidth;
    double fontSize;
    double rectAdjust;
};
constexpr std::array<Pen, 5> pens{{{2, 12, 1}, {7, 18, 2}, {12, 24, 3}, {18, 30, 4}, {28, 40, 5}}};

const Pen& penOf(double fontSize) {
    const auto pen = std::ranges::find_if(
        pens, [fontSize](const Pen& candidate) { return fontSize <= candidate.fontSize; });
    return pen == pens.end() ? pens.back() : *pen;
}

constexpr ToolDetailRule detailRules[] = {{"text", ToolDetailRule::Type::Text},
                                          {"fontSize", ToolDetailRule::Type::Number, true, 0.01},
                                          {"inset", ToolDetailRule::Type::Number, false, 0}};

constexpr ToolProperty properties[] = {groundProperty,    alignProperty,  boldProperty,
                                       directionProperty, adaptsProperty, opacityProperty};

constexpr double hitMargin = 5;
constexpr gfx::Size smallestBox{30, 20};
constexpr double selectedLineWidth = 2.0;

}  // namespace

// ---- making

std::shared_ptr<MDrawText> MDrawText::initWithStartPoint(gfx::Point start) {
    return makeAt<MDrawText>(start);
}

std::shared_ptr<MDrawText> MDrawText::initWithViewStartPoint(const std::shared_ptr<ui::View>& view,
                                                             gfx::Point start) {
    return makeInView<MDrawText>(view, start);
}

MDrawText::~MDrawText() {
    if (!_textView) return;
    if (ui::Environment::hasCurrent()) unregistKeyboardNotification();
    _textView->removeFromSuperview();
}

const ToolClass& MDrawText::Class() {
    static const ToolClass toolClass{"MDrawText",
                                     &MDrawRect::Class(),
                                     &MDrawTool::makeToolAt<MDrawText>,
                                     {.label = "{color}文字",
                                      .role = ui::AccessibilityRole::Text,
                                      .beginning = ToolBeginning::TouchDown,
                                      .recorder = ToolRecorder::Typing,
                                      .span = ToolSpan::Free,
                                      .keepsToFrame = true,
                                      .toolType = 3,
                                      .details = detailRules,
                                      .properties = properties}};
    return toolClass;
}

void MDrawText::init() {
    MDrawRect::init();
    // The width of the base, which the text's own does not touch.
    MDrawTool::setLineWidth(8.0);
}

// ---- creation

// A text that is turned has no box before it is typed, which would turn with it.
void MDrawText::drawMove(gfx::Point p) {
    _endPoint = isTurnedByQuarters() ? _startPoint : p;
    if (text().empty()) startEdittingText();
}

void MDrawText::drawUp(gfx::Point p) {
    _endPoint = isTurnedByQuarters() ? _startPoint : p;
    if (selected()) {
        finalize();
    } else if (text().empty()) {
        startEdittingText();
    }
}

void MDrawText::drawThrough(std::span<const gfx::Point> points) {
    if (!points.empty()) _endPoint = points.back();
}

bool MDrawText::isDrawVaild() const {
    if (_isEdittingText) return true;
    return rules().forgiving ? !gfx::isBlank(_text) : !_text.empty();
}

void MDrawText::finalize() {
    const auto alive = self();
    if (_isEdittingText) stopEdittingText();
    MDrawRect::finalize();
}

// ---- hit testing and dragging

int MDrawText::quarterTurns() const {
    const double quarters = std::remainder(rotateAngle() / (std::numbers::pi / 2), 4);
    return std::isfinite(quarters) ? (static_cast<int>(std::lround(quarters)) + 4) % 4 : 0;
}

void MDrawText::setQuarterTurns(int turns) {
    const int before = quarterTurns();
    const int after = (turns % 4 + 4) % 4;
    if (before == after) return;
    setRotateAngle(after * std::numbers::pi / 2);
    if ((after - before) % 2 == 0) return;
    const gfx::Rect box = frame();
    const gfx::Point half{box.size.height / 2, box.size.width / 2};
    _startPoint = box.center() - half;
    _endPoint = box.center() + half;
}

gfx::Point MDrawText::invertRotatePoint(gfx::Point p) const {
    if (!isTurnedByQuarters()) return p;
    return gfx::AffineTransform::quarterTurn(quarterTurns()).about(frame().center()).apply(p);
}

gfx::Point MDrawText::beginning() const {
    if (!isTurnedByQuarters()) return _startPoint;
    const gfx::Rect box = frame();
    return gfx::AffineTransform::quarterTurn(-quarterTurns()).about(box.center()).apply(box.origin);
}

void MDrawText::keepBeginning(gfx::Point p) {
    if (!isTurnedByQuarters()) return;
    const gfx::Point drift = p - beginning();
    _startPoint += drift;
    _endPoint += drift;
}

bool MDrawText::hitTest(gfx::Point p) {
    const double margin = onCanvas(hitMargin);
    return frame().inset(-margin, -margin).contains(invertRotatePoint(p));
}

MoveDirection MDrawText::handleAt(gfx::Point p) {
    const gfx::Rect box = frame();
    if (isOnCorner(invertPoint(p), MoveDirection::BottomRight, box))
        return MoveDirection::BottomRight;
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

void MDrawText::moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) {
    switch (_moveDirection) {
        case MoveDirection::Body:
            _startPoint += offset;
            _endPoint += offset;
            return;
        case MoveDirection::BottomRight: {
            _endPoint.x = std::max(_endPoint.x + offset.x, _startPoint.x + smallestBox.width);
            _endPoint.y = std::max(_endPoint.y + offset.y, _startPoint.y + smallestBox.height);
            const auto count = static_cast<double>(
                gfx::graphemeCount(ui::Environment::current().device(), text()));
            const gfx::Size box = frame().size;
            if (count > 0) {
                _fontSize =
                    std::max(1.0, std::floor(std::sqrt(box.width * box.height / (2 * count))));
            }
            return;
        }
        case MoveDirection::Scale:
            return MDrawRect::moveByOffsetEndPoint(offset, end);
        default:
            return;
    }
}

gfx::Point MDrawText::tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) {
    const gfx::Point corner = _endPoint;
    const gfx::Point beginning = this->beginning();
    const gfx::Size size = frame().size;
    const gfx::Point taken = MDrawRect::tryMovePointEndPoint(p1, p2);
    if (_moveDirection != MoveDirection::BottomRight) return taken;
    if (!isTurnedByQuarters()) return p1 + (_endPoint - corner);
    keepBeginning(beginning);
    const gfx::Size grown = frame().size;
    return p1 + gfx::AffineTransform::quarterTurn(-quarterTurns())
                    .apply(gfx::Point{grown.width - size.width, grown.height - size.height});
}

void MDrawText::scaleBy(gfx::Point fixed, gfx::Size factors) {
    MDrawRect::scaleBy(fixed, factors);
    _fontSize = std::max(1.0, _fontSize * std::min(factors.width, factors.height));
}

// ---- drawing

void MDrawText::drawContent(gfx::Context& context) {
    gfx::GraphicsStateGuard guard(context);
    if (!isTyped()) drawTextWithString(context, text());
}

void MDrawText::drawSlectedStateContent(gfx::Context& context) {
    if (_isEdittingText) return;
    context.setLineWidth(onCanvas(selectedLineWidth));
    MDrawRect::drawSlectedStateContent(context);
}

void MDrawText::drawContentHandle(gfx::Context& context) {
    const gfx::Rect box = frame();
    if (!_isEdittingText) drawHandleAtPoint(context, {box.maxX(), box.maxY()});
}

// ---- history

Feature MDrawText::getFeature() const {
    Feature feature = MDrawRect::getFeature();
    feature.set("MDrawText-text", text());
    feature.set("MDrawText-fontSize", _fontSize);
    return feature;
}

// Not built on the base's, so that the line width goes past the font size.
void MDrawText::setFeature(const FeatureRef& feature) {
    if (!feature) return;
    if (const auto* text = feature->get<std::string>("MDrawText-text")) {
        _text = *text;
        if (_isEdittingText) _textView->setText(*text);
    }
    // Sizes, widths and angles are deliberately read back in single precision.
    if (const double* size = feature->get<double>("MDrawText-fontSize"))
        _fontSize = static_cast<float>(*size);
    if (const auto* start = feature->get<gfx::Point>("MDrawLine-start")) _startPoint = *start;
    if (const auto* end = feature->get<gfx::Point>("MDrawLine-end")) _endPoint = *end;
    const auto* color = feature->get<gfx::ColorRef>("MDrawTool-color");
    setColor(color ? *color : nullptr);
    if (const double* width = feature->get<double>("MDrawTool-lineWidth"))
        MDrawTool::setLineWidth(static_cast<float>(*width));
    if (const auto* drawType = feature->get<std::int64_t>("MDrawTool-drawType"))
        setDrawType(static_cast<std::uint64_t>(*drawType));
    if (const double* angle = feature->get<double>("MDrawTool-rotateAngle"))
        setRotateAngle(static_cast<float>(*angle));
    readArrangement(*feature);
    // Properties may fit the box; it is as it was all the same.
    const gfx::Point start = _startPoint;
    const gfx::Point end = _endPoint;
    takeProperties(*feature);
    _startPoint = start;
    _endPoint = end;
}

// ---- the canvas

double MDrawText::getCurrentCtxScale() const {
    const auto canvas = delegate();
    return canvas ? canvas->drawTextAskForCurrentCtxScale(*this).value_or(1.0) : 1.0;
}

gfx::Rect MDrawText::getCurrentCtxRect() const {
    const auto canvas = delegate();
    return canvas ? canvas->drawTextAskForCurrentCtxRect(*this).value_or(frame()) : frame();
}

gfx::AffineTransform MDrawText::getCurrentContextTransform() const {
    const auto canvas = delegate();
    if (!canvas) return {};
    return canvas->drawTextAskForCurrentCtxTransform(*this).value_or(gfx::AffineTransform());
}

gfx::Color MDrawText::getMaskColor() const {
    const auto canvas = delegate();
    const gfx::ColorRef mask =
        canvas ? canvas->drawTextAskForMaskColor(*this).value_or(nullptr) : nullptr;
    if (mask) return *mask;
    const bool isOutlined = MDrawTool::text(groundProperty.name) == groundChoices[0].name;
    const bool isContrasting = !isOutlined || number(adaptsProperty.name) != 0;
    return isContrasting && color() ? gfx::contrasting(*color()) : gfx::Color{1, 1, 1, 1};
}

gfx::Point MDrawText::convertPointToCoordinate(gfx::Point p, Coordinate to) const {
    const gfx::AffineTransform toView = getCurrentContextTransform();
    return to == Coordinate::View ? toView.apply(p) : toView.inverted().apply(p);
}

gfx::Size MDrawText::convertSizeToCoordinate(gfx::Size size, Coordinate to) const {
    const double scale = getCurrentCtxScale();
    const double factor = to == Coordinate::View ? scale : 1 / scale;
    return {size.width * factor, size.height * factor};
}

gfx::Rect MDrawText::convertRectToCoordinate(const gfx::Rect& rect, Coordinate to) const {
    return {convertPointToCoordinate(rect.origin, to), convertSizeToCoordinate(rect.size, to)};
}

// ---- properties

void MDrawText::setText(const std::string& text) {
    _text = gfx::plainText(text);
    if (_isEdittingText) {
        _textView->setText(_text);
        updateTextViewSuitableFrame();
    } else if (frame().size == gfx::Size{}) {
        updateFrameWhenChangeLineWidth(_fontSize);
    }
}

ToolDetails MDrawText::details() const {
    return {{"text", text()}, {"fontSize", _fontSize}};
}

// The lines break where they did on the screen that it was typed on.
ToolDetails MDrawText::keptDetails() const {
    ToolDetails kept = MDrawText::details();
    if (_inset != usualInset) kept.push_back({"inset", _inset});
    return kept;
}

bool MDrawText::takeDetail(std::string_view name, const ToolDetailValue& value) {
    const auto* const number = std::get_if<double>(&value);
    const auto* const text = std::get_if<std::string>(&value);
    if (name == "text" && text) {
        _text = gfx::plainText(*text);
    } else if (name == "fontSize" && number) {
        _fontSize = *number;
    } else if (name == "inset" && number) {
        _inset = *number;
    } else {
        return false;
    }
    return true;
}

bool MDrawText::setProperty(std::string_view name, const ToolPropertyValue& value) {
    const auto alive = self();
    const std::optional<ToolPropertyValue> before = property(name);
    if (!MDrawRect::setProperty(name, value)) return false;
    if (before == value) return true;
    if (_isEdittingText) {
        _isRestyled = true;
        styleTextView();
        updateTextViewSuitableFrame();
    } else if (name == boldProperty.name && !_text.empty()) {
        updateFrameWhenChangeLineWidth(_fontSize);
    }
    return true;
}

double MDrawText::lineWidth() const {
    return penOf(_fontSize).lineWidth;
}

void MDrawText::setLineWidth(double width) {
    const double oldFontSize = _fontSize;
    const auto pen = std::ranges::find(pens, width, &Pen::lineWidth);
    if (pen != pens.end()) _fontSize = pen->fontSize;
    if (!text().empty()) updateFrameWhenChangeLineWidth(oldFontSize);
    if (const auto canvas = delegate()) canvas->drawTextAskForRedraw(*this);
}

double MDrawText::getRectAdjustForLineWidth() const {
    return penOf(_fontSize).rectAdjust;
}

}  // namespace kalim
