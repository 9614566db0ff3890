#pragma once

#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

// Draws on canvases of the page and measures texts with them.
class HtmlDevice : public Device {
public:
    std::shared_ptr<Surface> makeSurface(Size size, double scale, bool opaque) override;
    ImageRef makeImage(Bitmap bitmap, double scale, ImageOrientation orientation) override;

    std::vector<double> advances(std::string_view text, const Font& font) override;
    LineMetrics lineMetrics(const Font& font) override;
    std::vector<std::size_t> boundaries(std::string_view text, TextBoundary kind) override;
    TextDirections directions(std::string_view paragraph, BaseDirection base) override;
};

}  // namespace kalim::gfx
