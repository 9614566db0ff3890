#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/ui/control/TextHistory.h"
#include "kalimkit/ui/control/TextSelection.h"

namespace kalim::ui {

enum class TextUnit { Grapheme, Word };

// Left and right are meant as they are seen.
enum class TextMove {
    Left,
    Right,
    WordLeft,
    WordRight,
    LineStart,
    LineEnd,
    LineUp,
    LineDown,
    TextStart,
    TextEnd
};

// A text that is edited: its layout, its selection, what an input method composes, and its history.
// It knows no view. Offsets are bytes; those within a grapheme count as its start. Text from
// outside becomes what gfx::plainText() makes of it.
//
// While a composition goes on its text stands in the text, marked, in place of what was selected;
// nothing is recorded until it ends, and then as one edit. Everything but text from the input
// method ends it with the text as it stands.
class KALIM_API TextEditor {
public:
    // The device must outlive the editor.
    explicit TextEditor(gfx::Device& device);

    // Takes the text as it is, puts the caret at its end and forgets the history.
    void setText(std::string text);
    const std::string& text() const { return _layout.text(); }
    // Grows with every change of the text.
    std::uint64_t revision() const { return _revision; }
    const gfx::TextLayout& layout() const { return _layout; }
    void setFont(const gfx::Font& font) { _layout.setFont(font); }
    // The width limits a line, in points.
    void setWidth(double width) { _layout.setLimit({width, gfx::TextLayout::unlimited}); }

    void setBaseDirection(gfx::BaseDirection direction) { _layout.setBaseDirection(direction); }
    void setAlignment(gfx::LineAlignment alignment) { _layout.setAlignment(alignment); }

    // ---- input. Takes the place of the composition or of the selection.
    void insert(std::string_view typed);
    // Replaces the composed text and puts the selection in it, in bytes from its start. An empty
    // text ends the composition without any text.
    void setMarkedText(std::string_view composed, gfx::TextRange selection);
    void unmark();
    // There is none without a composition.
    const std::optional<gfx::TextRange>& markedRange() const { return _marked; }

    // ---- deleting: the selection, or without one the unit before or after the caret
    void deleteBackward(TextUnit unit);
    void deleteForward(TextUnit unit);

    // ---- caret and selection
    TextSelection selection() const { return _selection; }
    // Where the caret stands, or the moving end of the selection.
    gfx::TextPosition head() const { return {_selection.head, _isUpstream}; }
    void select(TextSelection selection);
    void selectAll();
    void selectWordAt(std::size_t offset);
    // Moves the head; the anchor goes with it unless the selection is extended.
    void moveTo(gfx::TextPosition position, bool extends);
    void move(TextMove move, bool extends);

    // ---- clipboard of the current environment; nothing without a selection, or without a text on
    // the clipboard
    void copy() const;
    void cut();
    void paste();

    // ---- history
    void undo();
    void redo();
    bool canUndo() const { return _history.canUndo(); }
    bool canRedo() const { return _history.canRedo(); }

private:
    // What a composition took the place of.
    struct Origin {
        std::string removed;
        TextSelection before;
    };

    void replace(gfx::TextRange range, std::string_view text);
    void edit(gfx::TextRange range, std::string_view text, TextEdit::Kind kind);
    void endComposition(std::string_view text);
    void setSelection(TextSelection selection);
    std::size_t snappedForward(std::size_t offset) const;
    gfx::TextPosition target(TextMove move) const;
    gfx::TextPosition besides(bool toRight, TextUnit unit) const;
    gfx::TextPosition endOfSelection(bool isRight) const;
    std::string selectedText() const;

    gfx::TextLayout _layout;
    std::uint64_t _revision = 0;
    TextSelection _selection;
    bool _isUpstream = false;
    std::optional<gfx::TextRange> _marked;
    Origin _origin;
    // Where moves up and down want to be; nothing outside of a row of them.
    std::optional<double> _wantedX;
    TextHistory _history;
};

}  // namespace kalim::ui
