#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class GestureRecognizer;
class View;

// What a view knows of a gesture recogniser.
class KALIM_API ViewGesture {
public:
    virtual ~ViewGesture() = default;

    // The view it is attached to; null when there is none.
    View* view() const { return _view; }
    // Itself, for those who know gestures.
    virtual std::shared_ptr<GestureRecognizer> recognizer() = 0;

protected:
    // The view has let go of it; not called where the view is gone itself.
    virtual void didLeaveView() = 0;

private:
    friend class View;

    View* _view = nullptr;
};

}  // namespace kalim::ui
