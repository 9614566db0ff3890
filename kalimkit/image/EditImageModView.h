#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// What a view looked like before an edit, and for the crop editor how the crop stood, so that the
// edit can be taken back and that it can be told whether anything has changed. A copy of a record
// is a record of the same view.
struct KALIM_API EditImageModView {
    // The bits of modProperty that are compared.
    enum Property : std::uint32_t {
        Frame = 1,
        Transform = 2,
        Center = 4,
        AnchorPoint = 8,
        Hidden = 64,
    };

    EditImageModView() = default;
    // A record of the view as it is; nothing of it is compared until modProperty says so.
    static EditImageModView initWithCurrentView(const std::shared_ptr<ui::View>& view);
    static EditImageModView initWithNewView(const std::shared_ptr<ui::View>& view);
    static EditImageModView
    initWithCropGridFrameWithScaleWithOffsetWithCropFrameWithImageFrameWithOrientation(
        const gfx::Rect& gridFrame, float scale, gfx::Point offset, const gfx::Rect& cropFrame,
        const gfx::Rect& imageFrame, std::int32_t orientation);

    // Whether the view differs, exactly, from what the record covers. A record that covers nothing
    // reports a change. A view that is not there has only zeros: all of its transform, too.
    bool isChanged() const;

    std::shared_ptr<ui::View> qvUIView;
    std::uint32_t modProperty = 0;
    gfx::Rect pFrame;
    gfx::AffineTransform pTransform;
    gfx::Point pCenter;
    gfx::Point pAnchorPoint;
    float pViewScale = 0;
    std::string pText;
    gfx::ColorRef pTextColor;
    bool hide = false;
    // These belong to a crop.
    gfx::Rect pGridFrame;
    float pScale = 0;
    gfx::Point pOffset;
    gfx::Rect pCropFrame;
    std::int32_t pOrientation = 0;
    std::int32_t pViewIndex = 0;
};

}  // namespace kalim
