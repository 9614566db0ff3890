#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/text/TextLayout.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MDrawTextDelegate.h"
#include "kalimkit/shapes/MDrawTextView.h"
#include "kalimkit/ui/control/TextViewDelegate.h"
#include "kalimkit/ui/environment/KeyboardObserver.h"

namespace kalim {

// A block of text in the box of the two points, filled over an outline in the mask colour. It is
// typed into a text view that lies over the canvas while the tool draws nothing itself. Lengths are
// canvas points, except where said. Texts are UTF-8.
class KALIM_API MDrawText : public MDrawRect,
                            public ui::TextViewDelegate,
                            public ui::KeyboardObserver {
public:
    // Which side a length is converted to: the tool's canvas points or points of the canvas view.
    enum class Coordinate { Tool = 0, View = 1 };

    // Without a view it cannot be edited, but it carries a text that is set.
    static std::shared_ptr<MDrawText> initWithStartPoint(gfx::Point start);
    // The text view is put into this view.
    static std::shared_ptr<MDrawText> initWithViewStartPoint(const std::shared_ptr<ui::View>& view,
                                                             gfx::Point start);
    ~MDrawText() override;
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // ---- creation. A text without text is edited at the first touch.
    void drawMove(gfx::Point p) override;
    void drawUp(gfx::Point p) override;
    // Keeps the box between the start point and the last one.
    void drawThrough(std::span<const gfx::Point> points) override;
    // Has a text, or is edited. Under forgiving rules blanks are none.
    bool isDrawVaild() const override;
    using MDrawRect::finalize;
    void finalize() override;
    // A text has no smallest size.
    void limitValidFeatrue() override {}

    // ---- editing
    // Does nothing while it is edited, without a view, or when the start point lies outside of the
    // rectangle that the delegate allows.
    void startEdittingText();
    void stopEdittingText();
    // The canvas is shown elsewhere while the text is edited: view points have moved so.
    void moveTextView(const gfx::AffineTransform& toNewView);
    // The text view of the next edit is put into this view, which is not owned.
    void setSuperView(std::weak_ptr<ui::View> view) { _superView = std::move(view); }
    bool isEdittingText() const { return _isEdittingText; }
    // The look of the text, also of the field while it is edited; ending the edit records it.
    void takeColor(gfx::ColorRef color);
    void takeLineWidth(double width);
    // Whether the text differs from what it was when editing began last.
    bool hasTextChanged() const { return text() != _preText; }
    void textViewDidChange(ui::TextView& view) override;
    void keyboardWillShow(const gfx::Rect& endFrame) override;
    void keyboardWillHide(const gfx::Rect& endFrame) override;
    // View points, of the last keyboard that came or went.
    double curKeyboardHeight() const { return _curKeyboardHeight; }
    // Null until the first edit.
    const std::shared_ptr<MDrawTextView>& textView() const { return _textView; }

    // ---- hit testing and dragging
    // The frame grown by five points on every side.
    bool hitTest(gfx::Point p) override;
    // Canvas point to the text's unturned box.
    gfx::Point invertRotatePoint(gfx::Point p) const;
    // The bottom-right handle fits the font size to the box.
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    // Where the box is as small as it may be, the drag has come as far as its corner.
    gfx::Point tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) override;
    // The font grows with the smaller factor, so that the words still fit the box.
    void scaleBy(gfx::Point fixed, gfx::Size factors) override;
    bool isSupportGestureRotate() const override { return false; }
    // Kept as the angle, which whole quarters alone count of.
    int quarterTurns() const override;
    // The box stays where it is seen.
    void setQuarterTurns(int turns) override;
    bool isTurnedByQuarters() const override { return quarterTurns() != 0; }

    // ---- drawing
    void drawContent(gfx::Context& context) override;
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawContentHandle(gfx::Context& context) override;
    void drawTextWithString(gfx::Context& context, const std::string& text);

    // ---- measures
    // Reduces the font size until the text fits the box, in at most ten steps for the height and
    // for the width, and tells where it is to be drawn. The size stays reduced.
    gfx::Rect reSetFont(const std::string& text);
    // Measures the text broken in the present box, in whole points.
    gfx::Size measureCoreTextSize(const std::string& text) const;
    static gfx::Size measureFrame(const gfx::TextLayout& layout);
    // Yields the typographic width, and as height the ascent, descent and leading.
    static gfx::Size getCTLineSize(const gfx::TextLine& line);
    gfx::Font getTextFont() const;

    // ---- history
    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;

    // ---- the canvas
    double getCurrentCtxScale() const;
    // An unanswered question yields the frame.
    gfx::Rect getCurrentCtxRect() const;
    gfx::AffineTransform getCurrentContextTransform() const;
    gfx::Color getMaskColor() const;
    gfx::Point convertPointToCoordinate(gfx::Point p, Coordinate to) const;
    gfx::Size convertSizeToCoordinate(gfx::Size size, Coordinate to) const;
    gfx::Rect convertRectToCoordinate(const gfx::Rect& rect, Coordinate to) const;

    // ---- properties
    // What is in the text view while it is edited.
    const std::string& text() const { return _isEdittingText ? _textView->text() : _text; }
    // A tool without any box gets one that fits. Bytes that are no UTF-8 become replacement
    // characters.
    void setText(const std::string& text);
    std::optional<std::string> words() const override { return text(); }
    void setWords(const std::string& words) override { setText(words); }
    ToolDetails details() const override;
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;
    // What changes the widths of letters gives the box another size.
    bool setProperty(std::string_view name, const ToolPropertyValue& value) override;
    double fontSize() const { return _fontSize; }
    void setFontSize(double size) { _fontSize = size; }
    // Follows from the font size, and sets it; a width that is none of the five pens' sets nothing.
    double lineWidth() const override;
    void setLineWidth(double width) override;
    // How far the outline of the present size pushes the text down.
    double getRectAdjustForLineWidth() const;
    using MDrawRect::drawType;
    // There is one style: stores 0.
    void setDrawType(std::uint64_t /*drawType*/) override { _drawType = 0; }
    std::shared_ptr<MDrawTextDelegate> delegate() const { return _delegate.lock(); }
    void setDelegate(std::weak_ptr<MDrawTextDelegate> delegate) { _delegate = std::move(delegate); }

protected:
    MDrawText() = default;
    void init() override;
    MoveDirection handleAt(gfx::Point p) override;
    // Of what is typed, and of the field under it; null for none.
    virtual gfx::ColorRef textColor() const { return color(); }
    virtual gfx::ColorRef fieldColor() const;
    // Whether the box goes with the words when they are typed anew, as long as nobody has made it
    // wider or narrower than they are.
    virtual bool shrinksToWords() const { return false; }
    // Whether the text is in its field and not drawn by the tool.
    bool isTyped() const { return _isEdittingText || (_textView && _textView->superview()); }
    template <typename Tool>
    static std::shared_ptr<Tool> makeInView(const std::shared_ptr<ui::View>& view,
                                            gfx::Point start);

private:
    // Points.
    static constexpr double usualInset = 5;

    // ---- editing (MDrawTextEditing.cpp)
    template <typename Message>
    void tell(Message message);
    std::shared_ptr<MDrawText> self();
    bool canEditAt(gfx::Point viewPoint) const;
    void prepareTextView();
    void styleTextView();
    void placeTextView();
    gfx::Size mostSize() const;
    // Of what its field becomes wider, how much so to the left, from 0 to 1: the side at which its
    // lines stand stays where it is.
    double widensToLeft() const;
    void updateTextViewSuitableFrame();
    // Where it was before is in view points.
    void fitTextView(const gfx::Rect& before);
    double getMinTextViewHeight() const { return _textView->fontSize(); }
    // The place of the corner where the text begins, canvas points; both follow the quarter turns.
    gfx::Point beginning() const;
    void keepBeginning(gfx::Point p);
    double leftOfBox() const;
    void reCalcStartAndEndPoint();
    void updateEndPoint();
    void registKeyboardNotification();
    void unregistKeyboardNotification();

    // ---- layout (MDrawTextLayout.cpp)
    void updateFrameWhenChangeLineWidth(double oldFontSize);
    double wrappingWidth() const;
    bool isAsWideAsWords() const;
    gfx::LineAlignment alignment() const;
    gfx::BaseDirection baseDirection() const;
    void drawPlate(gfx::Context& context, const gfx::TextLayout& layout, gfx::Point topLeft) const;
    void drawOutline(gfx::Context& context, const gfx::TextLayout& layout,
                     gfx::Point topLeft) const;
    void drawShadow(gfx::Context& context, const gfx::TextLayout& layout, gfx::Point topLeft) const;
    const gfx::TextLayout& layoutOf(const std::string& text, double width) const;
    template <typename Overflow>
    void shrinkFont(const std::string& text, Overflow overflow);

    // The canvas view, which owns the tool.
    std::weak_ptr<ui::View> _superView;
    std::string _text;
    // As it was when editing began.
    std::string _preText;
    double _fontSize = 16;
    std::shared_ptr<MDrawTextView> _textView;
    double _curKeyboardHeight = 0;
    bool _isEdittingText = false;
    // Editing began with words that the box may be wider than in the end.
    bool _keepsWidth = false;
    // Its look has changed since editing began last.
    bool _isRestyled = false;
    // From each side of the box to the lines: as on the screen when it was edited last.
    double _inset = usualInset;
    std::weak_ptr<MDrawTextDelegate> _delegate;
    // What was laid out last, for laying out is slow.
    mutable std::optional<gfx::TextLayout> _layout;
};

template <typename Tool>
std::shared_ptr<Tool> MDrawText::makeInView(const std::shared_ptr<ui::View>& view,
                                            gfx::Point start) {
    const std::shared_ptr<Tool> tool = MDrawTool::makeAt<Tool>(start);
    static_cast<MDrawText&>(*tool)._superView = view;
    return tool;
}

}  // namespace kalim
