#pragma once

#include <memory>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ImageView.h"

namespace kalim {

// The views that make up the editor's screen, for whoever looks at it. The controller that owns
// them is made of this and makes them.
class KALIM_API EditorSubviews {
public:
    // ---- views; null until the controller's view is loaded
    const std::shared_ptr<MDrawView>& drawView() const { return _drawView; }
    const std::shared_ptr<TesselTopTool>& toolView() const { return _toolView; }
    const std::shared_ptr<TesselDot>& nibView() const { return _nibView; }
    const std::shared_ptr<TesselPenView>& penView() const { return _penView; }
    const std::shared_ptr<TesselConfirmButton>& confirmButton() const { return _confirmButton; }
    const std::shared_ptr<QNTMaskView>& maskView() const { return _maskView; }
    const std::shared_ptr<ui::View>& panelView() const { return _panelView; }
    // Null until the first appearance, as the dots.
    const std::shared_ptr<TesselPopView>& colorPopView() const { return _colorPopView; }
    const std::shared_ptr<TesselPopView>& sizePopView() const { return _sizePopView; }
    const std::shared_ptr<TesselPopView>& penPopView() const { return _penPopView; }
    const std::shared_ptr<ui::Button>& configViewEdit() const { return _configViewEdit; }
    const std::shared_ptr<ui::Button>& configViewDelete() const { return _configViewDelete; }
    // The picture of a transition under way, or of one to come; null for none.
    const std::shared_ptr<ui::ImageView>& viewAnimateImageView() const {
        return _viewAnimateImageView;
    }
    // The question before closing while it is asked; null for none.
    const std::shared_ptr<KLMActionsheetView>& actionSheet() const { return _actionSheet; }
    // The crop editor while it is open; null for none.
    const std::shared_ptr<EditImageIntialView>& editImageInitialView() const {
        return _editImageInitialView;
    }

    // ---- the pickers' dots, in the order in which they are shown
    using Dots = std::vector<std::shared_ptr<TesselDot>>;
    const Dots& colorViews() const { return _colorViews; }
    const Dots& sizeViews() const { return _sizeViews; }
    const Dots& penViews() const { return _penViews; }
    // Never shown.
    const Dots& shapeViews() const { return _shapeViews; }
    const Dots& colors() const { return _colorViews; }
    const Dots& sizes() const { return _sizeViews; }
    const Dots& pens() const { return _penViews; }

protected:
    EditorSubviews() = default;
    ~EditorSubviews() = default;

    std::shared_ptr<MDrawView> _drawView;
    std::shared_ptr<TesselTopTool> _toolView;
    std::shared_ptr<TesselDot> _nibView;
    std::shared_ptr<TesselPenView> _penView;
    std::shared_ptr<TesselConfirmButton> _confirmButton;
    std::shared_ptr<QNTMaskView> _maskView;
    std::shared_ptr<ui::View> _panelView;
    std::shared_ptr<TesselPopView> _colorPopView;
    std::shared_ptr<TesselPopView> _sizePopView;
    std::shared_ptr<TesselPopView> _penPopView;
    std::shared_ptr<ui::Button> _configViewEdit;
    std::shared_ptr<ui::Button> _configViewDelete;
    std::shared_ptr<ui::ImageView> _viewAnimateImageView;
    std::shared_ptr<KLMActionsheetView> _actionSheet;
    std::shared_ptr<EditImageIntialView> _editImageInitialView;
    Dots _colorViews;
    Dots _sizeViews;
    Dots _penViews;
    Dots _shapeViews;
};

}  // namespace kalim
