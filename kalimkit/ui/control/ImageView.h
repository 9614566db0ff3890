#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// How a picture fills a rectangle. Fit shows all of it, Fill leaves nothing of the rectangle free;
// Center leaves it as large as it is.
enum class ContentMode { ScaleToFill = 0, AspectFit = 1, AspectFill = 2, Center = 4 };

// Where a picture of a size goes. Empty where either is.
KALIM_API gfx::Rect imageRectIn(const gfx::Rect& rect, gfx::Size imageSize, ContentMode mode);

// A picture, seen within the bounds. Takes no touches unless it is told to.
class KALIM_API ImageView : public View {
public:
    static std::shared_ptr<ImageView> initWithFrame(const gfx::Rect& frame);
    // Makes it as large as the image; empty for null.
    static std::shared_ptr<ImageView> initWithImage(gfx::ImageRef image);

    // Null shows none. The frame stays.
    const gfx::ImageRef& image() const { return _image; }
    void setImage(gfx::ImageRef image);
    ContentMode contentMode() const { return _contentMode; }
    void setContentMode(ContentMode mode);
    gfx::Size intrinsicContentSize() const { return _image ? _image->size() : gfx::Size{}; }
    // Where the picture is shown, in own coordinates; it may reach beyond the bounds.
    gfx::Rect imageRect() const;

protected:
    ImageView() = default;
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    gfx::ImageRef _image;
    ContentMode _contentMode = ContentMode::ScaleToFill;
};

}  // namespace kalim::ui
