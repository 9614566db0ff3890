#pragma once

#include <memory>
#include <utility>

#include "kalimkit/editor/sheet/QNTMaskViewDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/ImageView.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The gradient that darkens the lower screen under the open panel. A finger that lands on it is
// told to the delegate, which may let go of the mask, and goes on to the next responder.
class KALIM_API QNTMaskView : public ui::View {
public:
    static std::shared_ptr<QNTMaskView> init();

    void touchesBegan(const ui::TouchEvent& event) override;

    const std::shared_ptr<ui::ImageView>& gradientView() const { return _gradientView; }

    // ---- delegate
    void setDelegate(std::weak_ptr<QNTMaskViewDelegate> delegate) {
        _delegate = std::move(delegate);
    }

protected:
    QNTMaskView() = default;
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    std::shared_ptr<ui::ImageView> _gradientView;
    std::weak_ptr<QNTMaskViewDelegate> _delegate;
};

}  // namespace kalim
