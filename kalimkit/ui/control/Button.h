#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/control/Control.h"
#include "kalimkit/ui/environment/EdgeInsets.h"

namespace kalim::ui {

enum class ControlState { Normal, Highlighted, Disabled, Selected };

// A control with a title and a picture on its left, either alone or both, in the middle of its
// bounds. Each state may have looks of its own; what one does not have is that of the normal state.
// A button that is in several states shows the first of: disabled, highlighted, selected.
class KALIM_API Button : public Control {
public:
    // So many points lie between the picture and the title.
    static constexpr double spacing = 8;

    static std::shared_ptr<Button> initWithFrame(const gfx::Rect& frame);

    // ---- measures
    // Whole points that the content needs with its insets, or the background picture if that is
    // larger; no more than the size given.
    gfx::Size sizeThatFits(gfx::Size size) const;
    gfx::Size intrinsicContentSize() const;
    // Of what is shown now, in own coordinates; empty where there is none.
    gfx::Rect imageRect() const;
    gfx::Rect titleRect() const;

    // ---- looks of a state. An empty title, or null, takes back what a state had of its own.
    ControlState currentState() const;
    const std::string& title(ControlState state) const;
    void setTitle(std::string title, ControlState state = ControlState::Normal);
    const std::string& currentTitle() const { return title(currentState()); }
    // The title is white at first.
    const gfx::ColorRef& titleColor(ControlState state) const;
    void setTitleColor(gfx::ColorRef color, ControlState state = ControlState::Normal);
    const gfx::ColorRef& currentTitleColor() const { return titleColor(currentState()); }
    // The normal picture is shown faded while the button is disabled or highlighted and has none
    // for that.
    const gfx::ImageRef& image(ControlState state) const;
    void setImage(gfx::ImageRef image, ControlState state = ControlState::Normal);
    const gfx::ImageRef& currentImage() const { return image(currentState()); }
    // The image is stretched over the bounds.
    const gfx::ImageRef& backgroundImage(ControlState state) const;
    void setBackgroundImage(gfx::ImageRef image, ControlState state = ControlState::Normal);
    const gfx::ImageRef& currentBackgroundImage() const { return backgroundImage(currentState()); }

    // ---- looks of all states
    // The system font of 15 points at first.
    const gfx::Font& titleFont() const { return _titleFont; }
    void setTitleFont(const gfx::Font& font);
    const EdgeInsets& contentEdgeInsets() const { return _contentEdgeInsets; }
    void setContentEdgeInsets(const EdgeInsets& insets);
    // Whether the normal picture is faded for want of one for that state. On at first.
    bool adjustsImageWhenHighlighted() const { return _adjustsWhenHighlighted; }
    void setAdjustsImageWhenHighlighted(bool adjusts);
    bool adjustsImageWhenDisabled() const { return _adjustsWhenDisabled; }
    void setAdjustsImageWhenDisabled(bool adjusts);

    // The title where no label was set.
    std::string accessibilityLabel() const override;
    AccessibilityRole accessibilityRole() const override;

protected:
    Button() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    // Where they go in the bounds less the insets, by the natural sizes of what there is. An image
    // that is too large is shrunk as a whole.
    virtual gfx::Rect imageRectIn(const gfx::Rect& content) const;
    virtual gfx::Rect titleRectIn(const gfx::Rect& content) const;

private:
    struct Look {
        std::string title;
        gfx::ColorRef titleColor;
        gfx::ImageRef image;
        gfx::ImageRef backgroundImage;
    };
    static constexpr std::size_t stateCount = 4;

    Look& look(ControlState state) { return _looks[static_cast<std::size_t>(state)]; }
    const Look& look(ControlState state) const { return _looks[static_cast<std::size_t>(state)]; }
    gfx::Size imageSizeIn(const gfx::Rect& content) const;
    gfx::Size titleSize() const;
    double imageAlpha() const;

    std::array<Look, stateCount> _looks;
    gfx::Font _titleFont{"", 15};
    EdgeInsets _contentEdgeInsets;
    bool _adjustsWhenHighlighted = true;
    bool _adjustsWhenDisabled = true;
};

}  // namespace kalim::ui
