#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// Lies over a window and picks a colour from what a view in it shows at this moment: what the view
// hides is not to be had. A magnifier follows the pointer, or stands above the finger; letting go
// picks, escape and what takes the finger or the window's size away cancel it.
class KALIM_API Eyedropper : public View {
public:
    // Nothing for what was cancelled. Called once.
    using Handler = std::function<void(const std::optional<gfx::Color>& color)>;

    // The window is drawn first, so that what has just been closed does not lie over the view.
    // Null, and the handler hears nothing, for a view that is in no window.
    static std::shared_ptr<Eyedropper> show(View& source, Handler handler);

    // The colour under a place of the window; nothing beside the view.
    std::optional<gfx::Color> colorAt(gfx::Point place) const;
    void cancel() { end(std::nullopt); }
    bool handleKey(std::string_view key, bool isRepeated);

    void pointerEntered(gfx::Point p) override { moveTo(p, false); }
    void pointerMoved(gfx::Point p) override { moveTo(p, false); }
    void pointerExited() override;
    std::optional<Cursor> cursorAt(gfx::Point p) override;
    void touchesBegan(const TouchEvent& event) override;
    void touchesMoved(const TouchEvent& event) override;
    void touchesEnded(const TouchEvent& event) override;
    void touchesCancelled(const TouchEvent& /*event*/) override { cancel(); }
    bool admitsGesture(const GestureRecognizer& /*recognizer*/) const override { return false; }

protected:
    Eyedropper() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;
    void didMoveToWindow() override;

private:
    void moveTo(gfx::Point place, bool isFinger);
    void pick(const TouchEvent& event);
    gfx::Rect magnifier() const;
    void drawPixels(gfx::Context& context, const gfx::Rect& disc) const;
    void drawName(gfx::Context& context, const gfx::Rect& disc) const;
    void end(const std::optional<gfx::Color>& color);

    Handler _handler;
    // What the window has shown, and where the view is in it, in window points.
    gfx::BitmapRef _shown;
    double _scale = 1;
    gfx::Rect _source;
    gfx::Size _size;
    std::optional<gfx::Point> _place;
    bool _isFinger = false;
    // Several fingers have come: none of them picks.
    bool _hasCompany = false;
    bool _isOver = false;
};

}  // namespace kalim::ui
