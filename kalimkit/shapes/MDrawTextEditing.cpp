#include <algorithm>
#include <cmath>

#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/ui/environment/Environment.h"

// Typing: the text view over the canvas, what of it becomes the tool's box, and the keyboard.

namespace kalim {

namespace {

// A text view without text is this large, in view points at a scale of 1.
constexpr gfx::Size emptySize{100, 33};
// From the text to the right edge of a box that is only as wide as its text.
constexpr double boxMargin = 10;
constexpr double keyboardGap = 30;
constexpr double edgeGap = 10;
constexpr double largestInset = 5;

// What a view keeps of a frame is off by the last bits: without them.
double tidy(double value) {
    return std::round(value * 1e6) / 1e6;
}

gfx::Rect tidyFrame(const ui::View& view) {
    const gfx::Rect frame = view.frame();
    return {tidy(frame.minX()), tidy(frame.minY()), tidy(frame.size.width),
            tidy(frame.size.height)};
}

}  // namespace

gfx::ColorRef MDrawText::fieldColor() const {
    static const gfx::ColorRef color = gfx::makeColor(157 / 255.0, 157 / 255.0, 157 / 255.0, 0.5);
    return color;
}

std::shared_ptr<MDrawText> MDrawText::self() {
    return std::static_pointer_cast<MDrawText>(shared_from_this());
}

template <typename Message>
void MDrawText::tell(Message message) {
    if (const auto canvas = delegate()) ((*canvas).*message)(*this);
}

// ---- beginning and end

void MDrawText::startEdittingText() {
    const auto view = _superView.lock();
    if (_isEdittingText || !view) return;
    if (!canEditAt(convertPointToCoordinate(beginning(), Coordinate::View))) return;
    const auto alive = self();
    prepareTextView();
    registKeyboardNotification();
    view->addSubview(_textView);
    _textView->becomeFirstResponder();
    _isEdittingText = true;
    tell(&MDrawTextDelegate::drawTextBeginEdittingText);
}

void MDrawText::stopEdittingText() {
    if (!_isEdittingText) return;
    // The delegate may let go of a text that is empty.
    const auto alive = self();
    const double scale = getCurrentCtxScale();
    _text = _textView->text();
    _isEdittingText = false;
    _textView->resignFirstResponder();
    tell(&MDrawTextDelegate::drawTextDidEndEditText);
    _textView->removeFromSuperview();
    unregistKeyboardNotification();
    // Only looked at: the box stays as it was.
    if (!hasTextChanged() && !_isRestyled) return;
    reCalcStartAndEndPoint();
    // A size that went to the view and back would be off by the last bits.
    const double viewSize = _textView->font().size;
    if (viewSize != scale * _fontSize) _fontSize = viewSize / scale;
    if (isDrawVaild()) tell(&MDrawTextDelegate::drawTextAskForSaveState);
}

// Under forgiving rules a text is typed on as long as anything of it can be seen.
bool MDrawText::canEditAt(gfx::Point viewPoint) const {
    const auto canvas = delegate();
    if (!canvas) return false;
    const gfx::Rect area = canvas->drawTextAskForCurrentCtxRect(*this).value_or(gfx::Rect());
    const gfx::Rect box(viewPoint, convertSizeToCoordinate(frame().size, Coordinate::View));
    const bool isSeen = rules().forgiving && !_text.empty() && area.intersects(box);
    return isSeen || area.contains(viewPoint);
}

void MDrawText::prepareTextView() {
    if (!_textView) {
        _textView = MDrawTextView::initWithFrame({});
        _textView->setDelegate(std::shared_ptr<ui::TextViewDelegate>(self()));
        _textView->setBackgroundColor(fieldColor());
        _textView->setAccessibilityLabel(ui::Environment::current().localizedString("文字"));
        _textView->setKeyboardAppearance(ui::KeyboardAppearance::Dark);
        _textView->setEnablesReturnKeyAutomatically(true);
        _textView->setScrollEnabled(false);
    }
    _preText = _text;
    _isRestyled = false;
    _keepsWidth = !_text.empty() && !(shrinksToWords() && isAsWideAsWords());
    styleTextView();
    _textView->setText(_text);
    placeTextView();
}

void MDrawText::styleTextView() {
    const double scale = getCurrentCtxScale();
    _textView->setFontSize(scale * _fontSize);
    _textView->setTextColor(textColor());
    _textView->setDrawLineColor(color());
    _textView->setDrawTextColor(textColor());
    _textView->setDrawTextMaskColor(std::make_shared<const gfx::Color>(getMaskColor()));
    _textView->setDrawLineWidth(lineWidth());
    gfx::Font font = getTextFont();
    font.size = scale * _fontSize;
    _textView->setFont(font);
    _textView->setBaseDirection(baseDirection());
    _textView->setAlignment(alignment());
}

void MDrawText::takeColor(gfx::ColorRef color) {
    setColor(std::move(color));
    _isRestyled = true;
    if (_isEdittingText) styleTextView();
}

void MDrawText::takeLineWidth(double width) {
    const auto alive = self();
    if (_isEdittingText) _text = _textView->text();
    setLineWidth(width);
    _isRestyled = true;
    if (!_isEdittingText) return;
    styleTextView();
    const gfx::Rect before = tidyFrame(*_textView);
    placeTextView();
    fitTextView(before);
}

void MDrawText::placeTextView() {
    const gfx::Point origin = convertPointToCoordinate(beginning(), Coordinate::View);
    const double scale = getCurrentCtxScale();
    if (_text.empty()) {
        _textView->setInset(ui::TextView::textInset);
        // The width is deliberately not scaled a second time.
        const double shrink = std::min(scale, 1.0);
        _textView->setFrame(
            {origin, {shrink * emptySize.width, scale * shrink * emptySize.height}});
        return;
    }
    // As large as the box, with its lines broken where they are broken now: the inset gives way.
    // Only a text that has no room in its box gets more.
    gfx::Size inset{_inset * scale, 0};
    _textView->setInset(inset);
    gfx::Size size = convertSizeToCoordinate(frame().size, Coordinate::View);
    const double lines = measureCoreTextSize(_text).width * scale;
    size.width = std::max(size.width, lines + 2 * inset.width);
    const double height = _textView->sizeThatFits({size.width, mostSize().height}).height;
    size.height = std::max(size.height, height);
    inset.height = std::min((size.height - height) / 2, ui::TextView::textInset.height);
    _textView->setInset(inset);
    _textView->setFrame({origin, size});
}

// View points that text may use of the canvas.
gfx::Size MDrawText::mostSize() const {
    const gfx::Size area = getCurrentCtxRect().size;
    const auto view = _superView.lock();
    const gfx::Size visible = view ? view->bounds().size : gfx::Size();
    return {std::min(area.width, visible.width),
            std::min(area.height, visible.height) - keyboardGap};
}

// ---- the box after editing

// View points. A box that is narrower than the field has been is where the lines were.
double MDrawText::leftOfBox() const {
    const gfx::Rect field = _textView->frame();
    if (field.size.width > emptySize.width) return field.minX();
    const double scale = getCurrentCtxScale();
    const double words = std::ceil(_textView->layout().size().width / scale) + boxMargin;
    return field.minX() + (field.size.width - words * scale) * widensToLeft();
}

void MDrawText::reCalcStartAndEndPoint() {
    gfx::Point beginning = this->beginning();
    const gfx::Point inView = convertPointToCoordinate(beginning, Coordinate::View);
    const double x = tidy(inView.x);
    const double viewX = tidy(leftOfBox());
    if (viewX != x && isTurnedByQuarters()) {
        beginning = convertPointToCoordinate({viewX, inView.y}, Coordinate::Tool);
    } else if (viewX != x) {
        _startPoint.x += (viewX - x) / getCurrentCtxScale();
    }
    updateEndPoint();
    keepBeginning(beginning);
}

void MDrawText::updateEndPoint() {
    const double scale = getCurrentCtxScale();
    const gfx::Size view = tidyFrame(*_textView).size;
    const gfx::Size size{view.width / scale, view.height / scale};
    // What the view has measured need not be measured again.
    if (_textView->layout().text() == _text) _layout = _textView->layout();
    // Lines are measured as they were broken in the view.
    _inset = _textView->inset().width / scale;
    _endPoint = _startPoint + gfx::Point{size.width, size.height};
    const gfx::Size measured = measureCoreTextSize(_text);
    if (view.width <= emptySize.width) {
        _endPoint.x = _startPoint.x + measured.width + boxMargin;
        _inset = std::min(_inset, largestInset);
    }
    // On a canvas that is zoomed in, a field that shows the whole text may be lower than what is
    // measured; the box is not, so that the text keeps its size.
    const double needed = _textView->sizeThatFits({view.width, gfx::TextLayout::unlimited}).height;
    double height = view.height <= emptySize.height ? measured.height : size.height;
    if (needed <= view.height) height = std::max(height, measured.height);
    _endPoint.y = _startPoint.y + height;
    limitValidFeatrue();
}

// ---- typing

void MDrawText::textViewDidChange(ui::TextView& /*view*/) {
    updateTextViewSuitableFrame();
}

double MDrawText::widensToLeft() const {
    return gfx::shareAtLeft(alignment(), _textView->layout().isRightToLeft(0));
}

void MDrawText::updateTextViewSuitableFrame() {
    fitTextView(tidyFrame(*_textView));
}

void MDrawText::fitTextView(const gfx::Rect& before) {
    if (!_textView->superview()) return;
    const auto alive = self();
    const gfx::Rect area = getCurrentCtxRect();
    const gfx::Size most = mostSize();
    gfx::Rect frame = tidyFrame(*_textView);
    const double fittingWidth = _keepsWidth ? frame.size.width : most.width - 2 * edgeGap;
    const gfx::Size fitted = _textView->sizeThatFits({fittingWidth, most.height});
    const double shrink = std::min(getCurrentCtxScale(), 1.0);
    // Single precision is meant.
    frame.size.height = static_cast<float>(std::max(fitted.height, getMinTextViewHeight()));
    frame.size.width = _keepsWidth
                           ? std::max(frame.size.width, fitted.width)
                           : static_cast<float>(std::max(fitted.width, shrink * emptySize.width));
    if (const double share = widensToLeft(); share > 0) {
        const double leftmost = std::min(std::max(area.minX(), 0.0) + edgeGap, before.minX());
        const double left = before.minX() - (frame.size.width - before.size.width) * share;
        frame.origin.x = std::max(left, leftmost);
    }
    const double room = most.width - edgeGap - (frame.origin.x - std::max(area.minX(), 0.0));
    if (frame.size.width > room) frame.origin.x -= frame.size.width - room;
    _textView->setScrollEnabled(false);
    _textView->setFrame(frame);
    if (frame.size.height != before.size.height)
        tell(&MDrawTextDelegate::drawTextDidChangeTextViewHeight);
    tell(&MDrawTextDelegate::drawTextAskForRedraw);
}

void MDrawText::moveTextView(const gfx::AffineTransform& toNewView) {
    if (!_isEdittingText) return;
    const double scale = getCurrentCtxScale();
    gfx::Font font = _textView->font();
    font.size = scale * _fontSize;
    _textView->setFontSize(font.size);
    _textView->setFont(font);
    _textView->setFrame(toNewView.apply(tidyFrame(*_textView)));
    updateTextViewSuitableFrame();
}

// ---- keyboard

void MDrawText::registKeyboardNotification() {
    ui::Environment::current().keyboard().addObserver(
        std::shared_ptr<ui::KeyboardObserver>(self()));
}

void MDrawText::unregistKeyboardNotification() {
    ui::Environment::current().keyboard().removeObserver(*this);
}

void MDrawText::keyboardWillShow(const gfx::Rect& endFrame) {
    const auto alive = self();
    updateTextViewSuitableFrame();
    _curKeyboardHeight = endFrame.size.height;
    tell(&MDrawTextDelegate::drawTextKeyboardWillShow);
    _isEdittingText = true;
}

void MDrawText::keyboardWillHide(const gfx::Rect& endFrame) {
    const auto alive = self();
    _curKeyboardHeight = endFrame.size.height;
    tell(&MDrawTextDelegate::drawTextKeyboardWillHidden);
    updateTextViewSuitableFrame();
}

}  // namespace kalim
