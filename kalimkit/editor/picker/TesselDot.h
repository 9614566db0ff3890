#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kalimkit/editor/picker/TesselDotDelegate.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/theme/TesselConfig.h"
#include "kalimkit/ui/control/ImageView.h"
#include "kalimkit/ui/motion/ShapeLayer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// One round choice of a picker: a colour, a stroke size, a pen or a shape, by the type of its
// configuration. It answers when a finger lands on it.
class KALIM_API TesselDot : public ui::View {
public:
    // A dot is as wide and as high, in points.
    static constexpr double side = 38;

    // ---- making. A dot without a configuration is one of type 0 without a colour.
    static std::shared_ptr<TesselDot> initWithConfig(std::shared_ptr<TesselConfig> config);
    static std::shared_ptr<TesselDot> initWithColorShowBorder(gfx::ColorRef color, bool showBorder);
    static std::shared_ptr<TesselDot> initWithSize(unsigned size);
    static std::shared_ptr<TesselDot> initWithPen(unsigned pen);
    static std::shared_ptr<TesselDot> initWithShape(unsigned shape);

    // ---- touches
    void touchesBegan(const ui::TouchEvent& event) override;
    void touchesMoved(const ui::TouchEvent& event) override;
    void touchesEnded(const ui::TouchEvent& event) override;
    void touchesCancelled(const ui::TouchEvent& event) override;

    // ---- what it stands for. The type stays as it is.
    const std::shared_ptr<TesselConfig>& config() const { return _config; }
    const gfx::ColorRef& color() const { return _config->color(); }
    void setColor(gfx::ColorRef color);
    void setSize(unsigned size);
    // One of sizes may stand for a way to hide instead; nothing for the size again.
    void setHidingStyle(std::optional<std::uint64_t> drawType);
    void setPen(unsigned pen);
    void setShape(unsigned shape);
    // What it is called, in the user's language.
    std::string accessibilityLabel() const override;
    // What is said of it, at first as it is shown.
    bool isAccessibilitySelected() const override { return _isSaidSelected; }
    void setSaidSelected(bool selected);

    // ---- state
    // Selecting one that was not, and the reverse, is animated in a window.
    bool select() const { return _select; }
    void setSelect(bool select);
    // Whether a finger is on it.
    bool highLight() const { return _highLight; }
    // Whether a touch is reported.
    bool responseConfig() const { return _responseConfig; }
    void setResponseConfig(bool reports) { _responseConfig = reports; }
    // Its place in the row.
    int tag() const { return _tag; }
    void setTag(int tag) { _tag = tag; }

    // ---- looks
    // Diameter of what is drawn, points: that of the stroke for a size from 0 to 4, nothing for any
    // other size, else the whole dot.
    double dotSize() const;
    // A colour or a size has none, a way to hide does.
    const gfx::ImageRef& iconImage() const { return _iconView->image(); }
    const std::shared_ptr<ui::ImageView>& iconView() const { return _iconView; }

    // ---- delegate
    void setDelegate(std::weak_ptr<TesselDotDelegate> delegate) { _delegate = std::move(delegate); }

protected:
    explicit TesselDot(std::shared_ptr<TesselConfig> config);
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    void layoutSubviews() override;

private:
    bool hasIcon() const;
    void renderIcon();
    void drawFilling(gfx::Context& context) const;
    void drawOutline(gfx::Context& context) const;
    void animateRing(bool isGoingIn);
    void setHighLight(bool highLight);

    std::shared_ptr<TesselConfig> _config;
    bool _select = false;
    bool _isSaidSelected = false;
    bool _highLight = false;
    bool _responseConfig = true;
    int _tag = 0;
    std::shared_ptr<ui::ImageView> _iconView;
    // Over the edge of the dot; it shows what the outline does while that changes.
    std::shared_ptr<ui::ShapeLayer> _ringLayer;
    std::weak_ptr<TesselDotDelegate> _delegate;
};

}  // namespace kalim
