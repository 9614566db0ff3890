#include "kalimkit/ui/window/ViewController.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Tells the controller about its layout; outlives it where somebody else holds it.
class ControllerView : public View {
public:
    static std::shared_ptr<View> make(std::weak_ptr<ViewController> controller) {
        const std::shared_ptr<ControllerView> view(new ControllerView(std::move(controller)));
        view->init({});
        return view;
    }

protected:
    void layoutSubviews() override {
        const auto controller = _controller.lock();
        if (!controller) return;
        controller->viewWillLayoutSubviews();
        controller->viewDidLayoutSubviews();
    }

private:
    explicit ControllerView(std::weak_ptr<ViewController> controller)
        : _controller(std::move(controller)) {}

    std::weak_ptr<ViewController> _controller;
};

}  // namespace

ViewController::~ViewController() = default;

const std::shared_ptr<View>& ViewController::view() {
    if (_view) return _view;
    loadView();
    // A controller whose loadView() has made none gets the plain one.
    if (!_view) ViewController::loadView();
    viewDidLoad();
    return _view;
}

void ViewController::loadView() {
    setView(ControllerView::make(weak_from_this()));
}

void ViewController::setView(std::shared_ptr<View> view) {
    if (view) _view = std::move(view);
}

void ViewController::setNeedsStatusBarAppearanceUpdate() {
    const std::vector<Window*>& windows = *Environment::current().windows();
    const bool isRoot = std::ranges::any_of(
        windows, [this](const Window* each) { return each->rootViewController().get() == this; });
    if (!isRoot) return;
    Environment::current().setStatusBarHidden(prefersStatusBarHidden(), false);
    Environment::current().setStatusBarStyle(preferredStatusBarStyle());
}

}  // namespace kalim::ui
