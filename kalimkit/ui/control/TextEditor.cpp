#include "kalimkit/ui/control/TextEditor.h"

#include <algorithm>
#include <utility>

#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

TextEditor::TextEditor(gfx::Device& device) : _layout(device, {}, gfx::Font{}) {}

void TextEditor::setText(std::string text) {
    _marked.reset();
    _history.clear();
    _layout.setText(std::move(text));
    ++_revision;
    setSelection({this->text().size(), this->text().size()});
}

// ---- changing the text

void TextEditor::replace(gfx::TextRange range, std::string_view text) {
    std::string next = this->text();
    next.replace(range.begin, range.length(), text);
    _layout.setText(std::move(next));
    ++_revision;
    const std::size_t caret = snappedForward(range.begin + text.size());
    setSelection({caret, caret});
    // What has been typed goes on where it ended.
    if (!text.empty()) _isUpstream = _layout.behind(caret).isUpstream;
}

void TextEditor::edit(gfx::TextRange range, std::string_view text, TextEdit::Kind kind) {
    if (range.isEmpty() && text.empty()) return;
    TextEdit edit{kind,
                  range.begin,
                  this->text().substr(range.begin, range.length()),
                  std::string(text),
                  _selection,
                  {}};
    replace(range, text);
    edit.after = _selection;
    _history.record(std::move(edit));
}

// What is typed may join with what follows to one grapheme.
std::size_t TextEditor::snappedForward(std::size_t offset) const {
    return _layout.snapped(offset) == offset ? offset : _layout.graphemeAfter(offset);
}

void TextEditor::setSelection(TextSelection selection) {
    _selection = selection;
    _isUpstream = false;
    _wantedX.reset();
}

// ---- input

void TextEditor::insert(std::string_view typed) {
    const std::string text = gfx::plainText(typed);
    if (_marked) return endComposition(text);
    const bool isTyping = _selection.isEmpty();
    edit(_selection.range(), text, isTyping ? TextEdit::Kind::Typing : TextEdit::Kind::Other);
}

void TextEditor::setMarkedText(std::string_view composed, gfx::TextRange selection) {
    const std::string text = gfx::plainText(composed);
    if (text.empty()) return _marked ? endComposition({}) : void();
    if (!_marked) _origin = {selectedText(), _selection};
    const gfx::TextRange replaced = _marked.value_or(_selection.range());
    replace(replaced, text);
    _marked = {replaced.begin, replaced.begin + text.size()};
    const auto inText = [&](std::size_t offset) {
        return snappedForward(replaced.begin + std::min(offset, text.size()));
    };
    setSelection({inText(selection.begin), inText(selection.end)});
}

void TextEditor::unmark() {
    if (!_marked) return;
    const TextSelection kept = _selection;
    endComposition(text().substr(_marked->begin, _marked->length()));
    setSelection(kept);
}

// The text is as it was before the composition but for what takes its place, so that is what is
// recorded.
void TextEditor::endComposition(std::string_view text) {
    const gfx::TextRange marked = *std::exchange(_marked, std::nullopt);
    const auto kind = _origin.removed.empty() ? TextEdit::Kind::Typing : TextEdit::Kind::Other;
    TextEdit edit{kind, marked.begin, std::move(_origin.removed), std::string(text), _origin.before,
                  {}};
    const bool isKept = this->text().substr(marked.begin, marked.length()) == text;
    if (isKept) {
        const std::size_t end = snappedForward(marked.end);
        setSelection({end, end});
    } else {
        replace(marked, text);
    }
    edit.after = _selection;
    if (!edit.removed.empty() || !edit.inserted.empty()) _history.record(std::move(edit));
}

// ---- deleting

void TextEditor::deleteBackward(TextUnit unit) {
    unmark();
    if (!_selection.isEmpty()) return edit(_selection.range(), {}, TextEdit::Kind::Other);
    const std::size_t end = _selection.head;
    const std::size_t begin =
        unit == TextUnit::Word ? _layout.wordBefore(end) : _layout.graphemeBefore(end);
    edit({begin, end}, {}, TextEdit::Kind::Deleting);
}

void TextEditor::deleteForward(TextUnit unit) {
    unmark();
    if (!_selection.isEmpty()) return edit(_selection.range(), {}, TextEdit::Kind::Other);
    const std::size_t begin = _selection.head;
    const std::size_t end =
        unit == TextUnit::Word ? _layout.wordAfter(begin) : _layout.graphemeAfter(begin);
    edit({begin, end}, {}, TextEdit::Kind::Deleting);
}

// ---- caret and selection

void TextEditor::select(TextSelection selection) {
    unmark();
    _history.endRun();
    setSelection({_layout.snapped(selection.anchor), _layout.snapped(selection.head)});
}

void TextEditor::selectAll() {
    select({0, text().size()});
}

void TextEditor::selectWordAt(std::size_t offset) {
    unmark();
    const gfx::TextRange word = _layout.wordAt(offset);
    select({word.begin, word.end});
}

void TextEditor::moveTo(gfx::TextPosition position, bool extends) {
    unmark();
    _history.endRun();
    const std::size_t head = _layout.snapped(position.offset);
    setSelection({extends ? _selection.anchor : head, head});
    _isUpstream = position.isUpstream;
}

void TextEditor::move(TextMove move, bool extends) {
    unmark();
    const bool isVertical = move == TextMove::LineUp || move == TextMove::LineDown;
    if (isVertical) {
        const double x = _wantedX.value_or(_layout.caretRect(head()).minX());
        const int count = move == TextMove::LineUp ? -1 : 1;
        moveTo(_layout.movedByLines(head(), count, x), extends);
        _wantedX = x;
        return;
    }
    const bool collapses = !extends && !_selection.isEmpty();
    if (collapses && move == TextMove::Left) return moveTo(endOfSelection(false), false);
    if (collapses && move == TextMove::Right) return moveTo(endOfSelection(true), false);
    moveTo(target(move), extends);
}

gfx::TextPosition TextEditor::endOfSelection(bool isRight) const {
    const gfx::TextPosition begin{_selection.begin()};
    const gfx::TextPosition end = _layout.behind(_selection.end());
    const gfx::Rect first = _layout.caretRect(begin);
    const gfx::Rect last = _layout.caretRect(end);
    const bool isTurned = first.minY() == last.minY() ? last.minX() < first.minX()
                                                      : _layout.isRightToLeft(begin.offset);
    return isRight != isTurned ? end : begin;
}

gfx::TextPosition TextEditor::besides(bool toRight, TextUnit unit) const {
    if (unit == TextUnit::Grapheme)
        return toRight ? _layout.rightOf(head()) : _layout.leftOf(head());
    const std::size_t head = _selection.head;
    const bool goesOn = toRight != _layout.isRightToLeft(head);
    return {goesOn ? _layout.wordAfter(head) : _layout.wordBefore(head)};
}

gfx::TextPosition TextEditor::target(TextMove move) const {
    switch (move) {
        case TextMove::Left:
        case TextMove::Right:
            return besides(move == TextMove::Right, TextUnit::Grapheme);
        case TextMove::WordLeft:
        case TextMove::WordRight:
            return besides(move == TextMove::WordRight, TextUnit::Word);
        case TextMove::LineStart:
            return _layout.lineStart(this->head());
        case TextMove::LineEnd:
            return _layout.lineEnd(this->head());
        case TextMove::TextStart:
            return {};
        case TextMove::TextEnd:
            return {text().size()};
        case TextMove::LineUp:
        case TextMove::LineDown:
            break;
    }
    return this->head();
}

// ---- clipboard

std::string TextEditor::selectedText() const {
    return text().substr(_selection.begin(), _selection.range().length());
}

void TextEditor::copy() const {
    if (!_selection.isEmpty()) Environment::current().setClipboardText(selectedText());
}

void TextEditor::cut() {
    unmark();
    copy();
    if (!_selection.isEmpty()) edit(_selection.range(), {}, TextEdit::Kind::Other);
}

void TextEditor::paste() {
    unmark();
    const std::string text = gfx::plainText(Environment::current().clipboardText());
    if (!text.empty()) edit(_selection.range(), text, TextEdit::Kind::Other);
}

// ---- history

void TextEditor::undo() {
    unmark();
    if (const TextEdit* edit = _history.undo()) {
        replace({edit->offset, edit->offset + edit->inserted.size()}, edit->removed);
        setSelection(edit->before);
    }
}

void TextEditor::redo() {
    unmark();
    if (const TextEdit* edit = _history.redo()) {
        replace({edit->offset, edit->offset + edit->removed.size()}, edit->inserted);
        setSelection(edit->after);
    }
}

}  // namespace kalim::ui
