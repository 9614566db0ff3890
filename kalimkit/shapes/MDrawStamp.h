#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// A sign, a short text such as an emoji, or a small picture in the box of the two points, which
// keeps its proportions. The property "sign" says which: a name of signNamed(), "picture", or else
// the text itself. A tap puts one down in the size that goes with the line width, a drag in any.
class KALIM_API MDrawStamp : public MDrawRect {
public:
    static std::shared_ptr<MDrawStamp> initWithStartPoint(gfx::Point start);
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }

    void drawMove(gfx::Point p) override;
    void drawUp(gfx::Point p) override;
    bool isDrawVaild() const override;
    void limitValidFeatrue() override {}

    bool hitTest(gfx::Point p) override;
    void moveByOffsetEndPoint(gfx::Point offset, gfx::Point end) override;
    gfx::Rect frameIncludeLineWidth() const override;

    void drawContent(gfx::Context& context) override;

    // Becomes a stamp of the picture, see smallPictureText(); whether it can be.
    bool setPicture(const gfx::ImageRef& image);
    std::optional<std::string> spokenWords() const override;
    bool setProperty(std::string_view name, const ToolPropertyValue& value) override;

    std::string measureText() const override { return {}; }
    Feature getFeature() const override;
    void setFeature(const FeatureRef& feature) override;
    ToolDetails details() const override { return {}; }
    ToolDetails keptDetails() const override;
    bool takeDetail(std::string_view name, const ToolDetailValue& value) override;

protected:
    MDrawStamp() = default;

private:
    std::string sign() const;
    // Width by height.
    double proportion() const;
    void span(gfx::Point p);
    void drawWords(gfx::Context& context, const gfx::Rect& box) const;
    bool takePicture(const std::string& text);

    // Where the finger came down that makes it.
    std::optional<gfx::Point> _pressed;
    // As readSmallPicture() takes it, and what was read; empty and null without one.
    std::string _pictureText;
    gfx::ImageRef _picture;
};

}  // namespace kalim
