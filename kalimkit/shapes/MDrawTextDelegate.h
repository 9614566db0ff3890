#pragma once

#include <optional>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

class MDrawText;

// What a text tool tells its canvas, and asks it.
class KALIM_API MDrawTextDelegate {
public:
    virtual ~MDrawTextDelegate() = default;

    virtual void drawTextAskForRedraw(MDrawText& /*text*/) {}
    virtual void drawTextBeginEdittingText(MDrawText& /*text*/) {}
    // The text view is still where it was. The tool may be taken off the canvas now: it is invalid
    // when its text is empty.
    virtual void drawTextDidEndEditText(MDrawText& /*text*/) {}
    // An edit has changed the text: the tool's state is to be recorded.
    virtual void drawTextAskForSaveState(MDrawText& /*text*/) {}
    virtual void drawTextDidChangeTextViewHeight(MDrawText& /*text*/) {}
    // The keyboard's height is the tool's curKeyboardHeight().
    virtual void drawTextKeyboardWillShow(MDrawText& /*text*/) {}
    virtual void drawTextKeyboardWillHidden(MDrawText& /*text*/) {}

    // ---- questions
    // The part of the canvas view where text may be, view points; empty when unanswered.
    virtual std::optional<gfx::Rect> drawTextAskForCurrentCtxRect(const MDrawText& /*text*/) {
        return std::nullopt;
    }
    // Tells view points per tool point; unanswered it is 1.
    virtual std::optional<double> drawTextAskForCurrentCtxScale(const MDrawText& /*text*/) {
        return std::nullopt;
    }
    // Carries tool points to view points, the scale included; unanswered it is the identity.
    virtual std::optional<gfx::AffineTransform> drawTextAskForCurrentCtxTransform(
        const MDrawText& /*text*/) {
        return std::nullopt;
    }
    // Answers in radians.
    virtual std::optional<double> drawTextAskForCurrentCtxRotateAngle(const MDrawText& /*text*/) {
        return std::nullopt;
    }
    // The colour that a text in the tool's colour stands out from; white when unanswered.
    virtual std::optional<gfx::ColorRef> drawTextAskForMaskColor(const MDrawText& /*text*/) {
        return std::nullopt;
    }
};

}  // namespace kalim
