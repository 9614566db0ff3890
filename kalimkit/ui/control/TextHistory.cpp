#include "kalimkit/ui/control/TextHistory.h"

#include <utility>

namespace kalim::ui {

void TextHistory::record(TextEdit edit) {
    _edits.resize(_done);
    const bool isJoined = _isRunOpen && joinLast(edit);
    // A line feed ends the run, so that a long text is not taken back as a whole.
    _isRunOpen = edit.kind != TextEdit::Kind::Other && edit.inserted != "\n";
    if (!isJoined) _edits.push_back(std::move(edit));
    _done = _edits.size();
}

bool TextHistory::joinLast(const TextEdit& edit) {
    if (_edits.empty() || _edits.back().kind != edit.kind) return false;
    TextEdit& last = _edits.back();
    const bool isTyped = edit.kind == TextEdit::Kind::Typing && edit.removed.empty() &&
                         edit.offset == last.offset + last.inserted.size();
    const bool isDeleting = edit.kind == TextEdit::Kind::Deleting;
    if (isTyped) {
        last.inserted += edit.inserted;
    } else if (isDeleting && edit.offset + edit.removed.size() == last.offset) {
        last.removed.insert(0, edit.removed);
        last.offset = edit.offset;
    } else if (isDeleting && edit.offset == last.offset) {
        last.removed += edit.removed;
    } else {
        return false;
    }
    last.after = edit.after;
    return true;
}

const TextEdit* TextHistory::undo() {
    endRun();
    return canUndo() ? &_edits[--_done] : nullptr;
}

const TextEdit* TextHistory::redo() {
    endRun();
    return canRedo() ? &_edits[_done++] : nullptr;
}

void TextHistory::clear() {
    _edits.clear();
    _done = 0;
    endRun();
}

}  // namespace kalim::ui
