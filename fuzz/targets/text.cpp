// A text laid out in some width: carets, selections and moves at every place of it.

#include <string>

#include "fuzz/SharedDevice.h"
#include "kalimkit/gfx/text/TextLayout.h"

KALIM_FUZZ(text, input) {
    using namespace kalim;
    fuzz::Numbers numbers(input);
    const double width = numbers.below(300);
    gfx::Font font;
    font.size = 1 + numbers.below(100);
    const std::string text(
        fuzz::textOf(numbers.rest().first(std::min<std::size_t>(numbers.rest().size(), 300))));
    const gfx::TextLayout layout(fuzz::device(), text, font, {width, gfx::TextLayout::unlimited});
    fuzz::require(!layout.lines().empty(), "there is always a line");
    for (std::size_t offset = 0; offset <= text.size() + 1; offset += 1 + text.size() / 16) {
        const gfx::Rect caret = layout.caretRect({offset});
        const gfx::TextPosition found =
            layout.positionAt({caret.origin.x, caret.origin.y + caret.size.height / 2});
        fuzz::require(found.offset <= text.size(), "a caret is in the text");
        layout.selectionRects({offset, text.size()});
        layout.wordAt(offset);
        fuzz::require(layout.graphemeAfter(offset) <= text.size(), "a move ends in the text");
        layout.graphemeBefore(offset);
        layout.wordBefore(offset);
        layout.movedByLines({offset}, 1, caret.origin.x);
    }
}
