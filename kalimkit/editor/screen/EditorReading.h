#pragma once

#include <memory>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

namespace ui {
class Button;
class ImageView;
class View;
class ViewController;
}  // namespace ui
class EditImageIntialView;
class EditorParts;
class KLMActionsheetView;
class MDrawView;
class QNTMaskView;
class TesselConfirmButton;
class TesselDot;
class TesselPenView;
class TesselPopView;
class TesselTopTool;

// What the editor's screen consists of and what it is at, for whoever looks at it. The controller
// is made of this; nothing can be changed here, except through the views.
class KALIM_API EditorReading {
public:
    EditorReading(const EditorReading&) = delete;
    EditorReading& operator=(const EditorReading&) = delete;

    // ---- what it was made with
    const gfx::ImageRef& snipImage() const;
    bool needInitAnimate() const;
    const gfx::Rect& fromRect() const;
    double fromScale() const;

    // ---- views; null until the controller's view is loaded
    const std::shared_ptr<MDrawView>& drawView() const;
    const std::shared_ptr<TesselTopTool>& toolView() const;
    const std::shared_ptr<TesselDot>& nibView() const;
    const std::shared_ptr<TesselPenView>& penView() const;
    const std::shared_ptr<TesselConfirmButton>& confirmButton() const;
    const std::shared_ptr<QNTMaskView>& maskView() const;
    const std::shared_ptr<ui::View>& panelView() const;
    // They are null until the first appearance, as the dots are.
    const std::shared_ptr<TesselPopView>& colorPopView() const;
    const std::shared_ptr<TesselPopView>& sizePopView() const;
    const std::shared_ptr<TesselPopView>& penPopView() const;
    const std::shared_ptr<ui::Button>& configViewEdit() const;
    const std::shared_ptr<ui::Button>& configViewDelete() const;
    // The picture of a transition under way, or of one to come; null for none.
    const std::shared_ptr<ui::ImageView>& viewAnimateImageView() const;
    // The question before closing while it is asked; null for none.
    const std::shared_ptr<KLMActionsheetView>& actionSheet() const;
    // The crop editor while it is open; null for none.
    const std::shared_ptr<EditImageIntialView>& editImageInitialView() const;

    // ---- the pickers' dots, in the order in which they are shown
    using Dots = std::vector<std::shared_ptr<TesselDot>>;
    const Dots& colorViews() const;
    const Dots& sizeViews() const;
    const Dots& penViews() const;
    // These are never shown.
    const Dots& shapeViews() const;
    const Dots& colors() const { return colorViews(); }
    const Dots& sizes() const { return sizeViews(); }
    const Dots& pens() const { return penViews(); }

    // ---- the tool that the user has
    // Of the dot that was tapped last: 0 colour, 1 size, 2 pen, 3 shape.
    unsigned currentType() const;
    unsigned currentShape() const;
    unsigned currentPen() const;
    unsigned currentSize() const;
    const gfx::ColorRef& currentColor() const;

    // ---- states
    // The panel was open when it last came to rest.
    bool showPanel() const;
    // The panel opens or closes.
    bool isAnimation() const;
    // It is open or opens.
    bool isPanelUp() const;
    bool elementSelected() const;
    bool lockConfigView() const;
    bool isConfigViewOut() const;
    bool isConfigViewWillOut() const;
    bool shouldBlinkPenview() const;
    // Once a crop has changed how many pixels the content has.
    bool isImageCroped() const;
    // The picture is what a crop has left of the one that was opened.
    bool hasCropped() const;
    // It is another than the one that the editor was made with.
    bool hasOpenedPicture() const;
    // Between the dots of an open picker, and how far a folded one is moved inwards.
    double padding() const;
    double offset() const;

protected:
    explicit EditorReading(ui::ViewController& screen);
    ~EditorReading();

    EditorParts& parts() { return *_parts; }
    const EditorParts& parts() const { return *_parts; }

private:
    std::unique_ptr<EditorParts> _parts;
};

}  // namespace kalim
