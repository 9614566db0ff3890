#include "kalimkit/ui/control/TextView.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// The two touches of a double tap lie at most so many seconds and points apart.
constexpr double doubleTapTime = 0.35;
constexpr double doubleTapDistance = 20;
// A finger that moves less than this, in points, is not dragging.
constexpr double dragSlop = 4;

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

// ---- making

std::shared_ptr<TextView> TextView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : TextView {};
    const std::shared_ptr<TextView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void TextView::init(const gfx::Rect& frame) {
    _editor = std::make_unique<TextEditor>(Environment::current().device());
    View::init(frame);
}

TextView::~TextView() {
    // Gone with the focus: its window was not told.
    if (_blinkTimer && Environment::hasCurrent()) Environment::current().textInputChanged(nullptr);
}

std::shared_ptr<TextView> TextView::focusedIn(const Window& window) {
    return std::dynamic_pointer_cast<TextView>(window.firstResponder());
}

// ---- changes

// Asked for before the editor is: the width may have changed without a word.
void TextView::fitWidth() const {
    _editor->setWidth(std::max(bounds().size.width - 2 * _inset.width, 0.0));
}

template <typename Change>
void TextView::show(Change change) {
    fitWidth();
    const Shown before = shown();
    change();
    restartBlinking();
    damageDifference(before, shown());
    scrollToCaret();
}

template <typename Change>
void TextView::perform(Change change) {
    const auto alive = shared_from_this();
    const std::uint64_t revision = _editor->revision();
    show(change);
    if (_editor->revision() != revision) {
        if (const auto delegate = _delegate.lock()) delegate->textViewDidChange(*this);
        // It may have given the view another frame.
        scrollToCaret();
    }
    tellHost();
}

void TextView::tellHost() {
    if (isFirstResponder()) Environment::current().textInputChanged(this);
}

// ---- text and input

void TextView::setText(std::string text) {
    show([&] { _editor->setText(std::move(text)); });
    tellHost();
}

void TextView::insertText(std::string_view text) {
    perform([&] { _editor->insert(text); });
}

void TextView::setMarkedText(std::string_view text, gfx::TextRange selection) {
    perform([&] { _editor->setMarkedText(text, selection); });
}

void TextView::unmarkText() {
    perform([&] { _editor->unmark(); });
}

bool TextView::handleKey(std::string_view key) {
    const std::optional<KeyStroke> stroke = KeyStroke::parse(key);
    return stroke && handleKey(*stroke);
}

bool TextView::handleKey(const KeyStroke& stroke) {
    return handleMove(stroke) || handleEdit(stroke) || handleCommand(stroke);
}

bool TextView::handleMove(const KeyStroke& stroke) {
    const bool byWords = stroke.ctrl || stroke.alt;
    const auto move = [&](TextMove plain, TextMove far) {
        perform([&] { _editor->move(byWords ? far : plain, stroke.shift); });
        return true;
    };
    switch (stroke.key) {
        case KeyStroke::Key::Left:
            return move(TextMove::Left, TextMove::WordLeft);
        case KeyStroke::Key::Right:
            return move(TextMove::Right, TextMove::WordRight);
        case KeyStroke::Key::Up:
            return move(TextMove::LineUp, TextMove::LineUp);
        case KeyStroke::Key::Down:
            return move(TextMove::LineDown, TextMove::LineDown);
        case KeyStroke::Key::Home:
            return move(TextMove::LineStart, TextMove::TextStart);
        case KeyStroke::Key::End:
            return move(TextMove::LineEnd, TextMove::TextEnd);
        default:
            return false;
    }
}

bool TextView::handleEdit(const KeyStroke& stroke) {
    const TextUnit unit = stroke.ctrl || stroke.alt ? TextUnit::Word : TextUnit::Grapheme;
    switch (stroke.key) {
        case KeyStroke::Key::Backspace:
            perform([&] { _editor->deleteBackward(unit); });
            return true;
        case KeyStroke::Key::Delete:
            perform([&] { _editor->deleteForward(unit); });
            return true;
        case KeyStroke::Key::Enter:
            insertText("\n");
            return true;
        case KeyStroke::Key::Tab:
            insertText("\t");
            return true;
        default:
            return false;
    }
}

bool TextView::handleCommand(const KeyStroke& stroke) {
    if (stroke.key != KeyStroke::Key::Letter || !stroke.ctrl || stroke.alt) return false;
    if (stroke.shift && stroke.letter != 'z') return false;
    const auto run = [&](auto command) {
        perform([&] { ((*_editor).*command)(); });
        return true;
    };
    switch (stroke.letter) {
        case 'a':
            return run(&TextEditor::selectAll);
        case 'c':
            return run(&TextEditor::copy);
        case 'x':
            return run(&TextEditor::cut);
        case 'v':
            return run(&TextEditor::paste);
        case 'y':
            return run(&TextEditor::redo);
        case 'z':
            return run(stroke.shift ? &TextEditor::redo : &TextEditor::undo);
        default:
            return false;
    }
}

// ---- selection

void TextView::setSelection(TextSelection selection) {
    show([&] { _editor->select(selection); });
    tellHost();
}

gfx::Rect TextView::caretRect() const {
    fitWidth();
    const gfx::Rect edge = _editor->layout().caretRect(_editor->head());
    return {edge.origin + textOrigin(), {caretWidth, edge.size.height}};
}

// ---- measures and looks

gfx::Size TextView::sizeThatFits(gfx::Size size) const {
    gfx::TextLayout layout = _editor->layout();
    layout.setLimit({std::max(size.width - 2 * _inset.width, 0.0), gfx::TextLayout::unlimited});
    const gfx::Size text = layout.size();
    return {std::min(std::ceil(text.width + 2 * _inset.width), size.width),
            std::min(std::ceil(text.height + 2 * _inset.height), size.height)};
}

void TextView::setFont(const gfx::Font& font) {
    if (font == this->font()) return;
    _editor->setFont(font);
    setNeedsDisplay();
    scrollToCaret();
    tellHost();
}

void TextView::setBaseDirection(gfx::BaseDirection direction) {
    _editor->setBaseDirection(direction);
    setNeedsDisplay();
    tellHost();
}

void TextView::setAlignment(gfx::LineAlignment alignment) {
    _editor->setAlignment(alignment);
    setNeedsDisplay();
    tellHost();
}

void TextView::setInset(gfx::Size inset) {
    if (inset == _inset) return;
    _inset = inset;
    setNeedsDisplay();
}

void TextView::setTextColor(gfx::ColorRef color) {
    const bool isSame = gfx::equalColors(color, _textColor);
    _textColor = std::move(color);
    if (!isSame) setNeedsDisplay();
}

void TextView::setScrollEnabled(bool enabled) {
    _scrollEnabled = enabled;
    scrollToCaret();
}

void TextView::layoutSubviews() {
    scrollToCaret();
    tellHost();
}

// ---- focus

void TextView::didBecomeFirstResponder() {
    const auto alive = shared_from_this();
    _blinkTimer = std::make_unique<Timer>(Environment::current().runLoop());
    setNeedsDisplay();
    restartBlinking();
    if (const auto delegate = _delegate.lock()) delegate->textViewDidBeginEditing(*this);
    tellHost();
}

void TextView::didResignFirstResponder() {
    const auto alive = shared_from_this();
    _blinkTimer.reset();
    show([&] { _editor->unmark(); });
    setNeedsDisplay();
    const bool isTakenOver = window() && window()->firstResponder();
    if (!isTakenOver && Environment::hasCurrent()) {
        Environment::current().textInputChanged(nullptr);
    }
    if (const auto delegate = _delegate.lock()) delegate->textViewDidEndEditing(*this);
}

// ---- accessibility

std::string TextView::accessibilityValue() const {
    const std::string own = View::accessibilityValue();
    return own.empty() ? text() : own;
}

AccessibilityRole TextView::accessibilityRole() const {
    const AccessibilityRole own = View::accessibilityRole();
    return own == AccessibilityRole::None ? AccessibilityRole::TextField : own;
}

// ---- touches

gfx::TextPosition TextView::positionAt(gfx::Point place) const {
    fitWidth();
    return _editor->layout().positionAt(place - textOrigin());
}

bool TextView::isDoubleTap(gfx::Point place, Time time) const {
    return _tapTime && time - *_tapTime < doubleTapTime &&
           distance(place, _tapPlace) < doubleTapDistance;
}

void TextView::touchesBegan(const TouchEvent& event) {
    const auto alive = shared_from_this();
    const gfx::Point place = event.touches.front()->locationIn(this);
    becomeFirstResponder();
    const gfx::TextPosition position = positionAt(place);
    const bool isSecond = isDoubleTap(place, event.time);
    _tapPlace = place;
    _tapTime = isSecond ? std::nullopt : std::optional(event.time);
    _isDragging = false;
    perform([&] {
        if (isSecond) {
            _editor->selectWordAt(position.offset);
        } else {
            _editor->moveTo(position, false);
        }
    });
}

void TextView::touchesMoved(const TouchEvent& event) {
    const gfx::Point place = event.touches.front()->locationIn(this);
    if (!_isDragging && distance(place, _tapPlace) < dragSlop) return;
    _isDragging = true;
    _tapTime.reset();
    perform([&] { _editor->moveTo(positionAt(place), true); });
}

// The touches are the view's own: nothing above it hears of them.
void TextView::touchesEnded(const TouchEvent& /*event*/) {}

void TextView::touchesCancelled(const TouchEvent& /*event*/) {
    _tapTime.reset();
}

}  // namespace kalim::ui
