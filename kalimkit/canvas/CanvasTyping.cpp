#include "kalimkit/canvas/CanvasTyping.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"
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

std::shared_ptr<MDrawText> CanvasTyping::restyledText() const {
    return _canvas.tools.forgiving() ? _text : nullptr;
}

// ---- editing

void CanvasTyping::adopt(const ToolRef& tool) {
    if (!isText(tool)) return;
    auto& text = static_cast<MDrawText&>(*tool);
    text.setSuperView(fieldsView(text));
    text.setDelegate(_canvas.home.held(*this));
}

void CanvasTyping::edit(const ToolRef& text) {
    _canvas.selection.clear();
    _canvas.selection.forgetTap();
    // The picture may be turned otherwise than when it came.
    adopt(text);
    if (_canvas.tools.contains(text)) static_cast<MDrawText&>(*text).startEdittingText();
}

void CanvasTyping::editAt(gfx::Point p) {
    const ToolRef tool = _canvas.tools.topmostAt(p);
    if (!isText(tool)) return;
    // The touch-up of the second tap is still to come; it would select the text again.
    _canvas.finger.abort();
    edit(tool);
    _canvas.home.redisplay();
}

bool CanvasTyping::editSelected() {
    const auto& group = _canvas.selection.group();
    if (_text || !group || group->subTools().size() != 1) return false;
    const ToolRef tool = group->firstSelectedTool();
    if (!isText(tool) || tool->isLocked()) return false;
    edit(tool);
    _canvas.home.redisplay();
    return _text != nullptr;
}

bool CanvasTyping::end() {
    const std::shared_ptr<MDrawText> text = _text;
    if (!text) return false;
    text->stopEdittingText();
    if (_text == text) _text = nullptr;
    return true;
}

bool CanvasTyping::endByTouch() {
    const ui::FlagScope ending(_isEndedByTouch);
    return end();
}

void CanvasTyping::finish() {
    if (end()) _canvas.home.redisplay();
}

// ---- messages

void CanvasTyping::drawTextAskForRedraw(MDrawText& text) {
    _canvas.screen.markChanged(shared(text));
    _canvas.home.redisplay();
}

void CanvasTyping::drawTextBeginEdittingText(MDrawText& text) {
    _text = shared(text);
    place();
    drawTextAskForRedraw(text);
    if (const auto owner = _canvas.home.owner()) owner->textToolEditing(true);
}

void CanvasTyping::drawTextDidEndEditText(MDrawText& text) {
    const std::shared_ptr<MDrawText> tool = shared(text);
    if (_text == tool) _text = nullptr;
    // The finger that was making it, and may still be down, has nothing in hand.
    _canvas.finger.letGoOf(tool);
    leaveKeyboard();
    _canvas.screen.markChanged(tool);
    _canvas.home.redisplay();
    settle(tool);
    if (_text) return;
    if (const auto owner = _canvas.home.owner()) owner->textToolEditing(false);
}

// What has been typed becomes the selection; what is nothing goes.
void CanvasTyping::settle(const std::shared_ptr<MDrawText>& text) {
    const bool isNew = text->isNewBuild();
    if (text->isDrawVaild()) {
        text->setIsNewBuild(false);
        // The tap that ends the typing lets go of it.
        const bool isLetGo = _canvas.tools.forgiving() && _isEndedByTouch;
        if (_canvas.tools.contains(text) && !isLetGo) {
            _canvas.selection.add(text, text->frame().center());
        }
    } else if (isNew) {
        _canvas.tools.discard(text);
    } else if (_canvas.tools.contains(text)) {
        _canvas.selection.remove(text);
        _canvas.tools.remove(text);
    }
}

void CanvasTyping::drawTextAskForSaveState(MDrawText& text) {
    // Drawing fits the font to the box; what is recorded is what will be seen.
    drawnExtent(text);
    _canvas.tools.record(shared(text));
    _canvas.home.redisplay();
}

// ---- where fields lie

// Without a text it is one that would be made now.
int CanvasTyping::turnsOf(const MDrawText* text) const {
    return text ? text->quarterTurns() : _canvas.tools.quarterTurns();
}

// Where canvas points are the picture's, fields are laid out in those and shown as large as the
// canvas is: lines break in every view where they do in any other. Turned ones are laid out
// upright.
bool CanvasTyping::usesFieldsView(const MDrawText* text) const {
    return _canvas.shown.picture.hasBasis() || _canvas.tools.quarterTurns() != 0 ||
           turnsOf(text) != 0;
}

// What a text's field is put into.
std::shared_ptr<ui::View> CanvasTyping::fieldsView(const MDrawText& text) {
    ui::View& view = _canvas.home.view();
    if (!usesFieldsView(&text)) return view.shared_from_this();
    if (!_fields) {
        _fields = TypingView::initWithFrame(view.bounds());
        view.addSubview(_fields);
    }
    place();
    return _fields;
}

// Canvas points to those of a text's field: the view's, or canvas points, turned as the text is,
// from the view's corner on. It is a whole point, so that nothing is lost on the way there and
// back.
gfx::AffineTransform CanvasTyping::toFields(const gfx::AffineTransform& toView,
                                            const MDrawText* text) const {
    if (!usesFieldsView(text)) return toView;
    const auto turn = gfx::AffineTransform::quarterTurn(turnsOf(text));
    const gfx::Rect view({}, _canvas.home.view().bounds().size);
    const gfx::Point corner = toView.inverted().concat(turn).apply(view).origin;
    return turn.concat(
        gfx::AffineTransform::translation({-std::floor(corner.x), -std::floor(corner.y)}));
}

// A text that is seen turned is typed as it is seen.
void CanvasTyping::place() {
    if (!_fields || !usesFieldsView(_text.get())) return;
    const gfx::AffineTransform& canvasToView = _canvas.shown.zoom.toView();
    const double scale = _canvas.shown.zoom.shownScale();
    const int turns = turnsOf(_text.get()) - _canvas.tools.quarterTurns();
    const gfx::Rect visible({}, turnedSize(_canvas.home.view().bounds().size, turns) * (1 / scale));
    const auto toView = toFields(canvasToView, _text.get()).inverted().concat(canvasToView);
    _fields->setBounds(visible);
    _fields->setCenter(toView.apply(visible.center()));
    _fields->setTransform(gfx::AffineTransform::scaling(scale, scale)
                              .concat(gfx::AffineTransform::quarterTurn(-turns)));
}

// ---- the keyboard

void CanvasTyping::drawTextDidChangeTextViewHeight(MDrawText& text) {
    keepAboveKeyboard(text);
}

void CanvasTyping::drawTextKeyboardWillShow(MDrawText& text) {
    keepAboveKeyboard(text);
}

void CanvasTyping::drawTextKeyboardWillHidden(MDrawText&) {
    leaveKeyboard();
}

// Moves the view up by what the keyboard would hide of the text that is being typed.
void CanvasTyping::keepAboveKeyboard(const MDrawText& text) {
    ui::View& view = _canvas.home.view();
    if (!view.window() || !text.textView() || !(text.curKeyboardHeight() > 0)) return;
    if (!_frameWithoutKeyboard) _frameWithoutKeyboard = view.frame();
    view.setFrame(*_frameWithoutKeyboard);
    const ui::View& field = *text.textView();
    const double bottom = field.convertRectTo(field.bounds(), nullptr).maxY();
    const double hidden = bottom - (view.window()->size().height - text.curKeyboardHeight());
    if (hidden > 0) view.setFrame(_frameWithoutKeyboard->offset({0, -hidden}));
}

void CanvasTyping::leaveKeyboard() {
    if (!_frameWithoutKeyboard) return;
    _canvas.home.view().setFrame(*std::exchange(_frameWithoutKeyboard, std::nullopt));
}

void CanvasTyping::followView(const gfx::AffineTransform& before) {
    const std::shared_ptr<MDrawText> text = _text;
    place();
    const gfx::AffineTransform& toView = _canvas.shown.zoom.toView();
    if (text) {
        text->moveTextView(
            toFields(before, text.get()).inverted().concat(toFields(toView, text.get())));
    }
    if (!_frameWithoutKeyboard) return;
    // Whoever sized the view has placed it, too.
    _frameWithoutKeyboard = _canvas.home.view().frame();
    if (text) keepAboveKeyboard(*text);
}

// ---- questions

// Where there is no picture, there is no edge either.
std::optional<gfx::Rect> CanvasTyping::drawTextAskForCurrentCtxRect(const MDrawText& text) {
    const CanvasShown& shown = _canvas.shown;
    return shown.picture.source() ? toFields(shown.zoom.toView(), &text).apply(shown.content)
                                  : _canvas.home.view().bounds();
}

std::optional<double> CanvasTyping::drawTextAskForCurrentCtxScale(const MDrawText& text) {
    return usesFieldsView(&text) ? 1 : _canvas.shown.zoom.shownScale();
}

std::optional<gfx::AffineTransform> CanvasTyping::drawTextAskForCurrentCtxTransform(
    const MDrawText& text) {
    return toFields(_canvas.shown.zoom.toView(), &text);
}

std::optional<double> CanvasTyping::drawTextAskForCurrentCtxRotateAngle(const MDrawText&) {
    return _canvas.shown.zoom.rotateDegree();
}

std::optional<gfx::ColorRef> CanvasTyping::drawTextAskForMaskColor(const MDrawText& text) {
    const gfx::ColorRef color = text.color();
    const auto found = std::ranges::find_if(_maskColors, [&](const auto& pair) {
        return color && pair.first && gfx::equalColors(pair.first, color);
    });
    if (found == _maskColors.end()) return std::nullopt;
    return found->second;
}

}  // namespace kalim
