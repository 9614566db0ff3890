#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

class Window;

// Who runs a screen: makes its view when that is first asked for, and hears when it comes and goes.
// It owns the view; a window owns the controller whose view fills it.
class KALIM_API ViewController : public std::enable_shared_from_this<ViewController> {
public:
    virtual ~ViewController();

    // Loads it on first use: loadView(), then viewDidLoad().
    const std::shared_ptr<View>& view();
    bool isViewLoaded() const { return _view != nullptr; }
    // The window its view is shown in; null outside of one.
    Window* window() const { return _view ? _view->window() : nullptr; }

    // ---- coming and going, called by the window. Overrides need not call these.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool /*animated*/) {}
    virtual void viewDidAppear(bool /*animated*/) {}
    virtual void viewWillDisappear(bool /*animated*/) {}
    virtual void viewDidDisappear(bool /*animated*/) {}
    // Around every layout of the view's subviews, as far as the view is the one of loadView().
    virtual void viewWillLayoutSubviews() {}
    virtual void viewDidLayoutSubviews() {}

    // ---- status bar
    virtual bool prefersStatusBarHidden() const { return false; }
    // A number of the platform: 0 is dark on light, 1 light on dark.
    virtual int preferredStatusBarStyle() const { return 0; }
    // Has the two asked again and passed to the environment; ignored while it is not its window's
    // root. The window does so when the view appears.
    void setNeedsStatusBarAppearanceUpdate();

protected:
    ViewController() = default;
    // Makes the view and hands it to setView(). The default makes an empty one.
    virtual void loadView();
    // Null is ignored.
    void setView(std::shared_ptr<View> view);

private:
    std::shared_ptr<View> _view;
};

}  // namespace kalim::ui
