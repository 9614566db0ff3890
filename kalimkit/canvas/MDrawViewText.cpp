#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

std::shared_ptr<MDrawText> shared(MDrawText& text) {
    return std::static_pointer_cast<MDrawText>(text.shared_from_this());
}

bool isText(const ToolRef& tool) {
    return tool && tool->toolClass().recorder() == ToolRecorder::Typing;
}

}  // namespace

// ---- editing

void MDrawView::setTextMaskColorsParForTextColors(ColorPairs maskColors) {
    _textMaskColorPars = std::move(maskColors);
    invalidateLayers();
}

void MDrawView::finishEditText() {
    if (checkAndEndTextToolEdittingText()) redisplay();
}

bool MDrawView::checkAndEndTextToolEdittingText() {
    const auto alive = self();
    const std::shared_ptr<MDrawText> text = _curEdittingTextTool;
    if (!text) return false;
    text->stopEdittingText();
    if (_curEdittingTextTool == text) _curEdittingTextTool = nullptr;
    return true;
}

void MDrawView::editText(const std::shared_ptr<MDrawText>& text) {
    clearSelection();
    _taps.forget();
    if (isOnCanvas(text)) text->startEdittingText();
}

// A text that was made elsewhere is typed here, and coloured as here.
void MDrawView::adoptText(const ToolRef& tool) {
    if (!isText(tool)) return;
    auto& text = static_cast<MDrawText&>(*tool);
    text.setSuperView(typingHost());
    text.setDelegate(self());
}

// The text that a choice of colour or width goes to; null for none.
std::shared_ptr<MDrawText> MDrawView::restyledText() const {
    return forgiving() ? _curEdittingTextTool : nullptr;
}

// ---- two taps on a text

void MDrawView::handleDoubleTapGesture(gfx::Point place) {
    const auto alive = self();
    if (_handingTool && !_handingTool->isDrawVaild()) deleteCurrentHandlingTool();
    // The field that is open takes its own taps, whatever lies under it.
    if (_curEdittingTextTool || isBeingCreated()) return;
    const ToolRef tool = testHitTestSelectTool(invertViewPoint(place));
    if (!isText(tool)) return;
    // The touch-up of the second tap is still to come; it would select the text again.
    _touch.abortTouch = true;
    editText(std::static_pointer_cast<MDrawText>(tool));
    redisplay();
}

// ---- messages

void MDrawView::drawTextAskForRedraw(MDrawText& text) {
    _drawn.markChanged(shared(text));
    redisplay();
}

void MDrawView::drawTextBeginEdittingText(MDrawText& text) {
    const auto alive = self();
    _curEdittingTextTool = shared(text);
    drawTextAskForRedraw(text);
    if (const auto delegate = _drawViewdelegate.lock()) delegate->textToolEditing(true);
}

void MDrawView::drawTextDidEndEditText(MDrawText& text) {
    const auto alive = self();
    const std::shared_ptr<MDrawText> tool = shared(text);
    if (_curEdittingTextTool == tool) _curEdittingTextTool = nullptr;
    // The finger that was making it, and may still be down, has nothing in hand.
    if (_handingTool == tool) _handingTool = nullptr;
    if (_selfOriginalRect) setFrame(*std::exchange(_selfOriginalRect, std::nullopt));
    _drawn.markChanged(tool);
    redisplay();
    const bool isNew = tool->isNewBuild();
    if (tool->isDrawVaild()) {
        tool->setIsNewBuild(false);
        // The tap that ends the typing lets go of it.
        const bool isLetGo = forgiving() && _touch.endsTyping;
        if (isOnCanvas(tool) && !isLetGo) {
            addToolToSelectedToolsPoint(tool, tool->frame().center());
        }
    } else if (isNew) {
        discard(tool);
    } else if (isOnCanvas(tool)) {
        removeToolFromSelectedTools(tool);
        _undoManager->removeTool(tool);
    }
    if (_curEdittingTextTool) return;
    if (const auto delegate = _drawViewdelegate.lock()) delegate->textToolEditing(false);
}

void MDrawView::drawTextAskForSaveState(MDrawText& text) {
    const auto alive = self();
    // Drawing fits the font to the box; what is recorded is what will be seen.
    drawnExtent(text);
    _undoManager->addToolSuccess(shared(text));
    redisplay();
}

// ---- where fields lie

// What a text's field is put into. Where canvas points are the picture's, fields are laid out in
// those and shown as large as the canvas is: lines break in every view where they do in any other.
std::shared_ptr<ui::View> MDrawView::typingHost() {
    if (!_picture.hasBasis()) return self();
    if (!_typingView) {
        _typingView = TypingView::initWithFrame(bounds());
        addSubview(_typingView);
    }
    placeTypingView();
    return _typingView;
}

// Canvas points to those of a text's field: the view's, or canvas points from the view's corner on.
// It is a whole point, so that nothing is lost on the way there and back.
gfx::AffineTransform MDrawView::toTyping(const gfx::AffineTransform& toView) const {
    if (!_picture.hasBasis()) return toView;
    const gfx::Point corner = toView.inverted().apply(gfx::Point{});
    return gfx::AffineTransform::translation({-std::floor(corner.x), -std::floor(corner.y)});
}

void MDrawView::placeTypingView() {
    if (!_typingView || !_picture.hasBasis()) return;
    const double scale = _zoom.shownScale();
    const gfx::Rect visible({}, bounds().size * (1 / scale));
    const auto toView = toTyping(mViewTransform()).inverted().concat(mViewTransform());
    _typingView->setBounds(visible);
    _typingView->setCenter(toView.apply(visible.center()));
    _typingView->setTransform(gfx::AffineTransform::scaling(scale, scale));
}

// ---- the keyboard

void MDrawView::drawTextDidChangeTextViewHeight(MDrawText& text) {
    keepAboveKeyboard(text);
}

void MDrawView::drawTextKeyboardWillShow(MDrawText& text) {
    keepAboveKeyboard(text);
}

void MDrawView::drawTextKeyboardWillHidden(MDrawText&) {
    if (_selfOriginalRect) setFrame(*std::exchange(_selfOriginalRect, std::nullopt));
}

// Moves the view up by what the keyboard would hide of the text that is being typed.
void MDrawView::keepAboveKeyboard(const MDrawText& text) {
    if (!window() || !text.textView() || !(text.curKeyboardHeight() > 0)) return;
    if (!_selfOriginalRect) _selfOriginalRect = frame();
    setFrame(*_selfOriginalRect);
    const ui::View& field = *text.textView();
    const double bottom = field.convertRectTo(field.bounds(), nullptr).maxY();
    const double hidden = bottom - (window()->size().height - text.curKeyboardHeight());
    if (hidden > 0) setFrame(_selfOriginalRect->offset({0, -hidden}));
}

// The view has another size: what it showed at its points is seen elsewhere.
void MDrawView::followView(const gfx::AffineTransform& before) {
    const std::shared_ptr<MDrawText> text = _curEdittingTextTool;
    placeTypingView();
    if (text) text->moveTextView(toTyping(before).inverted().concat(toTyping(mViewTransform())));
    if (!_selfOriginalRect) return;
    // Whoever sized the view has placed it, too.
    _selfOriginalRect = frame();
    if (text) keepAboveKeyboard(*text);
}

// ---- questions

// Where there is no picture, there is no edge either.
std::optional<gfx::Rect> MDrawView::drawTextAskForCurrentCtxRect(const MDrawText&) {
    return _picture.source() ? toTyping(mViewTransform()).apply(_ctxRect) : bounds();
}

std::optional<double> MDrawView::drawTextAskForCurrentCtxScale(const MDrawText&) {
    return _picture.hasBasis() ? 1 : _zoom.shownScale();
}

std::optional<gfx::AffineTransform> MDrawView::drawTextAskForCurrentCtxTransform(const MDrawText&) {
    return toTyping(mViewTransform());
}

std::optional<double> MDrawView::drawTextAskForCurrentCtxRotateAngle(const MDrawText&) {
    return _zoom.rotateDegree();
}

std::optional<gfx::ColorRef> MDrawView::drawTextAskForMaskColor(const MDrawText& text) {
    const gfx::ColorRef color = text.color();
    const auto found = std::ranges::find_if(_textMaskColorPars, [&](const auto& pair) {
        return color && pair.first && gfx::equalColors(pair.first, color);
    });
    if (found == _textMaskColorPars.end()) return std::nullopt;
    return found->second;
}

}  // namespace kalim
