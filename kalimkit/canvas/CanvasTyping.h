#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "kalimkit/canvas/TypingView.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

class CanvasFinger;
class CanvasHome;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;
struct CanvasShown;

// The text of a canvas that is being typed, and where its field lies.
class CanvasTyping : public MDrawTextDelegate {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasShown& shown;
        CanvasTools& tools;
        CanvasScreen& screen;
        CanvasSelection& selection;
        CanvasFinger& finger;
    };
    explicit CanvasTyping(const Canvas& canvas) : _canvas(canvas) {}

    // Null while none is typed.
    const std::shared_ptr<MDrawText>& text() const { return _text; }
    // The text that a choice of colour or width goes to; null for none.
    std::shared_ptr<MDrawText> restyledText() const;
    // See MDrawView::setTextMaskColorsParForTextColors().
    using ColorPairs = std::vector<std::pair<gfx::ColorRef, gfx::ColorRef>>;
    const ColorPairs& maskColors() const { return _maskColors; }
    void setMaskColors(ColorPairs colors) { _maskColors = std::move(colors); }

    // ---- editing
    // A text that was made elsewhere is typed here, and coloured as here; other tools are ignored.
    void adopt(const ToolRef& tool);
    void edit(const ToolRef& text);
    // Two taps on the canvas, canvas points: on a text they edit it.
    void editAt(gfx::Point p);
    bool editSelected();
    // Whether there was any.
    bool end();
    bool endByTouch();
    // With what is seen of it.
    void finish();

    // ---- where the field lies
    void place();
    // The view has another size: what it showed at its points is seen elsewhere.
    void followView(const gfx::AffineTransform& before);

    // ---- from texts
    void drawTextAskForRedraw(MDrawText& text) override;
    void drawTextBeginEdittingText(MDrawText& text) override;
    void drawTextDidEndEditText(MDrawText& text) override;
    void drawTextAskForSaveState(MDrawText& text) override;
    void drawTextDidChangeTextViewHeight(MDrawText& text) override;
    void drawTextKeyboardWillShow(MDrawText& text) override;
    void drawTextKeyboardWillHidden(MDrawText& text) override;
    std::optional<gfx::Rect> drawTextAskForCurrentCtxRect(const MDrawText& text) override;
    std::optional<double> drawTextAskForCurrentCtxScale(const MDrawText& text) override;
    std::optional<gfx::AffineTransform> drawTextAskForCurrentCtxTransform(
        const MDrawText& text) override;
    std::optional<double> drawTextAskForCurrentCtxRotateAngle(const MDrawText& text) override;
    std::optional<gfx::ColorRef> drawTextAskForMaskColor(const MDrawText& text) override;

private:
    void settle(const std::shared_ptr<MDrawText>& text);
    bool usesFieldsView(const MDrawText* text) const;
    std::shared_ptr<ui::View> fieldsView(const MDrawText& text);
    gfx::AffineTransform toFields(const gfx::AffineTransform& toView, const MDrawText* text) const;
    int turnsOf(const MDrawText* text) const;
    void keepAboveKeyboard(const MDrawText& text);
    void leaveKeyboard();

    Canvas _canvas;
    std::shared_ptr<MDrawText> _text;
    // A finger that has just landed ends the typing.
    bool _isEndedByTouch = false;
    ColorPairs _maskColors;
    // What fields lie in where canvas points are the picture's; null until it is needed.
    std::shared_ptr<TypingView> _fields;
    // Where the view belongs while a keyboard moves it; nothing while none does.
    std::optional<gfx::Rect> _frameWithoutKeyboard;
};

}  // namespace kalim
