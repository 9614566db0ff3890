#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/editor/picker/TesselPenViewDelegate.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/motion/ShapeLayer.h"

namespace kalim {

// The round button at the bottom of the editor. It shows the pen in its colour and size, and can
// play a ring hint that invites a first tap. A tap is told to the delegate.
class KALIM_API TesselPenView : public ui::Button {
public:
    static std::shared_ptr<TesselPenView> initWithFrame(const gfx::Rect& frame);

    // ---- touches
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;
    // Where the last finger landed, own coordinates, and whether it has left that place since and
    // is still down; such a touch is no tap.
    gfx::Point startPoint() const { return _startPoint; }
    bool isMove() const { return _isMove; }

    // ---- what it shows. A pen that has no picture leaves the one that is there.
    unsigned pen() const { return _pen; }
    void setPen(unsigned pen);
    // Sizes go from 0 to 4.
    unsigned size() const { return _size; }
    void setSize(unsigned size);
    // Said instead of the size of a pen that hides; nothing for a pen that has a size.
    void setHidingStyle(std::optional<std::uint64_t> drawType) { _hidingStyle = drawType; }
    // The pen is red at first.
    const gfx::ColorRef& color() const { return _color; }
    void setColor(gfx::ColorRef color);
    // The picture of the three; null before there is one.
    const gfx::ImageRef& icon() const { return _icon; }
    // Pen, colour and size or way to hide in the user's language; of the pen in use, also when the
    // crop editor has been opened since.
    std::string accessibilityValue() const override;

    // ---- ring hint
    // 1 starts it if it may play, 0 stops it, anything else is ignored.
    void ringAnimationOp(int op);
    bool isRinging() const { return _firstRing != nullptr; }
    // Whether the hint may play. One that plays goes on.
    bool canUseRingAnimation() const { return _canUseRingAnimation; }
    void setCanUseRingAnimation(bool can) { _canUseRingAnimation = can; }
    // Null while the hint does not play.
    const std::shared_ptr<ui::ShapeLayer>& firstRing() const { return _firstRing; }
    const std::shared_ptr<ui::ShapeLayer>& secondRing() const { return _secondRing; }

    // ---- zoom, as it is shown; the button's own transform stays as it is. Out shrinks it and lets
    // it come back, as long each; in lets it grow to its size. Seconds.
    void zoomOutWithDuration(double duration);
    void zoomInWithDuration(double duration);

    // ---- delegate
    void setDelegate(std::weak_ptr<TesselPenViewDelegate> delegate) {
        _delegate = std::move(delegate);
    }

protected:
    TesselPenView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    void renderIcon();
    void sendTap();
    std::shared_ptr<ui::ShapeLayer> addRing();
    void placeRing(ui::ShapeLayer& ring) const;

    gfx::Point _startPoint;
    bool _isMove = false;
    unsigned _pen = 0;
    unsigned _penInUse = 0;
    unsigned _size = 0;
    std::optional<std::uint64_t> _hidingStyle;
    gfx::ColorRef _color = gfx::makeColor(1, 0, 0);
    gfx::ImageRef _icon;
    bool _canUseRingAnimation = false;
    std::shared_ptr<ui::ShapeLayer> _firstRing;
    std::shared_ptr<ui::ShapeLayer> _secondRing;
    std::weak_ptr<TesselPenViewDelegate> _delegate;
};

}  // namespace kalim
