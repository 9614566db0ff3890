#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kalimkit/ui/control/TextSelection.h"

namespace kalim::ui {

// One replacement in a text. Only `Typing` and `Deleting` grow together with their like.
struct TextEdit {
    enum class Kind { Typing, Deleting, Other };

    Kind kind = Kind::Other;
    std::size_t offset = 0;
    std::string removed;
    std::string inserted;
    TextSelection before;
    TextSelection after;
};

// The edits of a text, for undo and redo. What is typed or deleted without a break is one edit.
class TextHistory {
public:
    // Drops what could be redone.
    void record(TextEdit edit);
    // The next edit does not join the last one.
    void endRun() { _isRunOpen = false; }
    // The edit to take back, and the one to make again; null for none. Valid until the next call.
    const TextEdit* undo();
    const TextEdit* redo();
    bool canUndo() const { return _done > 0; }
    bool canRedo() const { return _done < _edits.size(); }
    void clear();

private:
    bool joinLast(const TextEdit& edit);

    std::vector<TextEdit> _edits;
    // How many of them are in force.
    std::size_t _done = 0;
    bool _isRunOpen = false;
};

}  // namespace kalim::ui
