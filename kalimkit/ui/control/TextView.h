#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/ui/control/KeyStroke.h"
#include "kalimkit/ui/control/TextEditor.h"
#include "kalimkit/ui/control/TextViewDelegate.h"
#include "kalimkit/ui/loop/Timer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// How a host's on-screen keyboard is to look.
enum class KeyboardAppearance { Default = 0, Dark = 1 };

// A text of several lines that the user edits: aligned left at first, broken at the view's width
// less the inset. A tap takes the focus and places the caret, a drag selects, a double tap selects
// a word. The caret blinks while the view has the focus and nothing is selected. Lengths are
// points.
class KALIM_API TextView : public View {
public:
    // Between the view's edges and its text where nothing else is said: left and right, top and
    // bottom.
    static constexpr gfx::Size textInset{5, 8};
    static constexpr double caretWidth = 2;
    // Seconds that the caret is shown, and then that it is not.
    static constexpr double blinkInterval = 0.5;

    static std::shared_ptr<TextView> initWithFrame(const gfx::Rect& frame);
    ~TextView() override;
    // The text view that has a window's focus; null when there is none.
    static std::shared_ptr<TextView> focusedIn(const Window& window);

    // ---- text
    const std::string& text() const { return _editor->text(); }
    // How the text is laid out in it, as it was shown last.
    const gfx::TextLayout& layout() const { return _editor->layout(); }
    // Puts the caret at the end and forgets the field's history. Not reported to the delegate.
    void setText(std::string text);

    // ---- input, for hosts. Offsets are bytes of UTF-8.
    void insertText(std::string_view text);
    // What an input method composes, and what is selected of it; empty ends the composition.
    void setMarkedText(std::string_view text, gfx::TextRange selection);
    // Ends the composition, with its text as it stands.
    void unmarkText();
    const std::optional<gfx::TextRange>& markedRange() const { return _editor->markedRange(); }
    // left, right, up, down, home, end, backspace, delete, enter and tab; with shift moves extend
    // the selection, with ctrl or alt they and deletions go by words, and ctrl+home and ctrl+end to
    // the ends of the text; ctrl+a, c, x, v, z, shift+z and y. False, and nothing happens, for any
    // other key.
    bool handleKey(std::string_view key);
    bool handleKey(const KeyStroke& stroke);

    // ---- selection, in bytes
    TextSelection selection() const { return _editor->selection(); }
    void setSelection(TextSelection selection);
    // Of the caret, or of the moving end of the selection, in own coordinates and in those of the
    // window.
    gfx::Rect caretRect() const;
    gfx::Rect caretRectInWindow() const { return convertRectTo(caretRect(), nullptr); }

    // ---- measures
    // The whole numbers of points that the text and its inset need, no more than the size given.
    gfx::Size sizeThatFits(gfx::Size size) const;

    // ---- looks
    const gfx::Font& font() const { return _editor->layout().font(); }
    void setFont(const gfx::Font& font);
    void setBaseDirection(gfx::BaseDirection direction);
    void setAlignment(gfx::LineAlignment alignment);
    gfx::Size inset() const { return _inset; }
    // No side of it is negative.
    void setInset(gfx::Size inset);
    // Null is clear: the text is not drawn. Black at first.
    const gfx::ColorRef& textColor() const { return _textColor; }
    void setTextColor(gfx::ColorRef color);
    // Whether the content follows the caret; on at first. Off, it is back at the top.
    bool isScrollEnabled() const { return _scrollEnabled; }
    void setScrollEnabled(bool enabled);
    // The host's keyboard follows it.
    KeyboardAppearance keyboardAppearance() const { return _keyboardAppearance; }
    void setKeyboardAppearance(KeyboardAppearance appearance) { _keyboardAppearance = appearance; }
    // Whether the keyboard's return key is to be disabled while there is no text.
    bool enablesReturnKeyAutomatically() const { return _enablesReturnKeyAutomatically; }
    void setEnablesReturnKeyAutomatically(bool enables) {
        _enablesReturnKeyAutomatically = enables;
    }

    // ---- delegate
    void setDelegate(std::weak_ptr<TextViewDelegate> delegate) { _delegate = std::move(delegate); }

    // The text where no value was set.
    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override;

    bool canBecomeFirstResponder() const override { return true; }
    void touchesBegan(const TouchEvent& event) override;
    void touchesMoved(const TouchEvent& event) override;
    void touchesEnded(const TouchEvent& event) override;
    void touchesCancelled(const TouchEvent& event) override;

protected:
    TextView() = default;
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;
    void didBecomeFirstResponder() override;
    void didResignFirstResponder() override;

private:
    // What shows of the text, to find what a change has to draw again.
    struct Shown {
        std::size_t firstLine = 0;
        std::vector<std::string> lines;
        // Text that runs from right to left is among them.
        bool isMixed = false;
        std::vector<gfx::Rect> selection;
        std::vector<gfx::Rect> marked;
        std::vector<gfx::Rect> carets;
    };

    // ---- changes
    // Makes a change of the text or the selection that shows at once.
    template <typename Change>
    void show(Change change);
    // The same as something that the user did: a change of the text is reported.
    template <typename Change>
    void perform(Change change);
    void fitWidth() const;
    void tellHost();
    bool handleMove(const KeyStroke& stroke);
    bool handleEdit(const KeyStroke& stroke);
    bool handleCommand(const KeyStroke& stroke);
    gfx::TextPosition positionAt(gfx::Point place) const;
    bool isDoubleTap(gfx::Point place, Time time) const;

    // ---- showing (TextViewDrawing.cpp)
    gfx::Point textOrigin() const { return {_inset.width, _inset.height}; }
    std::vector<gfx::Rect> rectsOf(gfx::TextRange range) const;
    Shown shown() const;
    void damageDifference(const Shown& before, const Shown& now);
    void damageLine(std::size_t line);
    void scrollToCaret();
    bool showsCaret() const;
    void restartBlinking();
    // That of caretRect(), and the lower half of another one where two directions meet.
    std::vector<gfx::Rect> carets() const;
    void drawUnderlines(gfx::Context& context, const gfx::Rect& dirty) const;

    std::unique_ptr<TextEditor> _editor;
    gfx::Size _inset = textInset;
    gfx::ColorRef _textColor = gfx::makeColor(0, 0, 0);
    bool _scrollEnabled = true;
    KeyboardAppearance _keyboardAppearance = KeyboardAppearance::Default;
    bool _enablesReturnKeyAutomatically = false;
    std::weak_ptr<TextViewDelegate> _delegate;
    // Only while the view has the focus.
    std::unique_ptr<Timer> _blinkTimer;
    bool _isCaretLit = true;
    // Where the last finger came down, own coordinates, and when; no time when it cannot be the
    // first tap of two.
    gfx::Point _tapPlace;
    std::optional<Time> _tapTime;
    bool _isDragging = false;
};

}  // namespace kalim::ui
