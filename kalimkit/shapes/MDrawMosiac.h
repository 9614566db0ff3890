#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// What a patch shows in the place of what it lies on, by its drawType; all other numbers average.
enum class MosaicStyle : std::uint64_t {
    // Blocks of the mean colours: from them what they hide can be guessed.
    Averaging = 0,
    // Blocks that know nothing of what they hide.
    Sealed = 10,
    // The tool's colour.
    Solid = 11,
    // The picture out of focus. Cosmetic: it hides nothing for certain.
    Blur = 12,
};

// A patch that hides a rectangle of the picture. The canvas supplies the pixelated picture as a
// fill and paints patches in a pass of their own; in all else a finished patch is inert: no finger
// hits it, and it draws nothing among the other tools. Under forgiving rules it is picked, moved
// resized and turned as a box is, and keeps the colour and the width that it was made with, unless
// it is solid: nothing of them is seen. What it shows stays where it is in the picture when it is
// turned.
class KALIM_API MDrawMosiac : public MDrawRect {
public:
    static std::shared_ptr<MDrawMosiac> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    // From then on the patch shows the fill, no longer the preview.
    void drawUp(gfx::Point p) override;

    MosaicStyle style() const;
    // Whether nothing that leaves the canvas tells of what it lies on. The canvas draws such a
    // patch by cover(), over all of the picture's pixels that it touches, and uses no masciImage.
    bool hidesForCertain() const;
    // What a solid patch shows: its colour without any translucency, black without one.
    gfx::Color solidColor() const;

    const char* label() const override;
    // One that hides for certain is never too small once it is there: nothing may drop it.
    bool isDrawVaild() const override;

    // Whether it shows what hides the picture, no longer the preview.
    bool isHiding() const override { return _mIsDrawUp || _masciImage; }
    // A patch that nobody has let go of would show what it is to hide.
    void settle() override;

    // Under forgiving rules the patch is hit anywhere, and up to five points beside it.
    bool hitTest(gfx::Point p) override;
    bool hitOnHandle(gfx::Point p) override;
    bool testHitOnHandle(gfx::Point p) override;
    gfx::Polygon area() const override;

    void drawContent(gfx::Context&) override {}
    void drawSlectedStateContent(gfx::Context& context) override;
    void drawOnGround(gfx::Context& context, const gfx::Paint& fill,
                      const gfx::Rect& background) override {
        drawMosiacContentWithFilledColorInRect(context, fill, background);
    }
    // While it is dragged, a translucent box. Then the masciImage, or else the fill, over what of
    // the frame lies on the background (canvas points), grown to whole device pixels so that no
    // pixel at the rim lets something of the hidden picture through: it reaches beyond frame and
    // background by less than a pixel, or by one where the view is turned. Nothing off the
    // background.
    void drawMosiacContentWithFilledColorInRect(gfx::Context& context, const gfx::Paint& fill,
                                                const gfx::Rect& background);

    // Fills the rectangles, user space, each grown to whole device pixels.
    static void cover(gfx::Context& context, const gfx::Paint& fill,
                      std::span<const gfx::Rect> parts);

    // Keeps the look of the preview, whatever the colour.
    void setColor(gfx::ColorRef color) override;
    void setLineWidth(double width) override;
    // Once it has lain on a forgiving canvas its angle counts, wherever it comes to afterwards.
    void setRules(const ToolRules& rules) override;
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;
    // A ready piece of pixelated picture is drawn instead of the fill; null stands for none.
    const gfx::ImageRef& masciImage() const { return _masciImage; }
    void setMasciImage(gfx::ImageRef image) { _masciImage = std::move(image); }

protected:
    MDrawMosiac() = default;
    void init() override;

private:
    bool keepsItsLook() const {
        return rules().forgiving && _mIsDrawUp && style() != MosaicStyle::Solid;
    }

    bool isTurned() const { return _isTurnable && rotateAngle() != 0; }
    gfx::AffineTransform turn() const;
    void coverTurned(gfx::Context& context, const gfx::Paint& fill,
                     const gfx::Rect& background) const;

    bool _mIsDrawUp = false;
    // Patches of canvases that are not forgiving never were turned, whatever their angle says.
    bool _isTurnable = false;
    // Set for the preview, which is never stroked; deliberate.
    gfx::ColorRef _maskBorderColor;
    gfx::ImageRef _masciImage;
};

}  // namespace kalim
