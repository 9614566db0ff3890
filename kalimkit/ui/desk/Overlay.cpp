#include "kalimkit/ui/desk/Overlay.h"

#include <algorithm>
#include <utility>

#include "kalimkit/ui/desk/Bubble.h"
#include "kalimkit/ui/desk/Eyedropper.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

// Hears of every press in the window and takes no part in any.
class Overlay::PressWatcher : public GestureRecognizer {
public:
    explicit PressWatcher(Overlay& overlay) : _overlay(overlay) {
        setCancelsTouches(false);
        setRecognizesSimultaneously(true);
    }

protected:
    void touchesBegan(const TouchEvent& /*event*/,
                      const std::vector<TouchRef>& /*active*/) override {
        _overlay.hideTip();
        _overlay.setKeyFocus(nullptr);
    }
    void touchesMoved(const TouchEvent& /*event*/,
                      const std::vector<TouchRef>& /*active*/) override {}
    void touchesEnded(const TouchEvent& /*event*/,
                      const std::vector<TouchRef>& /*active*/) override {}
    void touchesCancelled(const TouchEvent& /*event*/,
                          const std::vector<TouchRef>& /*active*/) override {}
    void reset() override {}

private:
    // Takes it off its view before it goes.
    Overlay& _overlay;
};

// ---- making

std::shared_ptr<Overlay> Overlay::in(Window& window) {
    if (auto existing = existingIn(window)) return existing;
    const std::shared_ptr<Overlay> overlay(new Overlay);
    View::performWithoutAnimation([&] {
        overlay->init(window.rootView()->bounds());
        window.rootView()->addSubview(overlay);
        overlay->setFillsSuperview(true);
    });
    overlay->connect(window);
    return overlay;
}

std::shared_ptr<Overlay> Overlay::existingIn(const Window& window) {
    for (const auto& view : window.rootView()->subviews()) {
        if (auto overlay = std::dynamic_pointer_cast<Overlay>(view)) return overlay;
    }
    return nullptr;
}

void Overlay::init(const gfx::Rect& frame) {
    View::init(frame);
    setMultipleTouchEnabled(true);
}

void Overlay::connect(Window& window) {
    const std::weak_ptr<Overlay> weak = std::static_pointer_cast<Overlay>(shared_from_this());
    window.setKeyTaker([weak](std::string_view key, bool isRepeated) {
        const auto overlay = weak.lock();
        return overlay && overlay->takeKey(key, isRepeated);
    });
    window.hover().setViewHandler([weak](const std::shared_ptr<View>& view) {
        if (const auto overlay = weak.lock()) overlay->pointerIsOn(view);
    });
    _watcher = std::make_shared<PressWatcher>(*this);
    window.rootView()->addGestureRecognizer(_watcher);
    Environment::current().addAppearanceObserver(weak);
}

Overlay::~Overlay() {
    if (_watcher && _watcher->view()) _watcher->view()->removeGestureRecognizer(*_watcher);
    if (!Environment::hasCurrent()) return;
    Environment::current().runLoop().cancel(_tipCall);
    Environment::current().runLoop().cancel(_noteCall);
}

void Overlay::didMoveToWindow() {
    if (window() || !Environment::hasCurrent()) return;
    hideTip();
    endNote(false);
}

// ---- what is open

void Overlay::open(std::shared_ptr<Popover> popover) {
    if (!popover) return;
    hideTip();
    if (_popovers.empty()) _focusBefore = _keyFocus;
    setKeyFocus(nullptr);
    _popovers.push_back(popover);
    dim();
    if (superview()) superview()->bringSubviewToFront(*this);
    addSubview(popover);
    popover->place();
}

void Overlay::close(const Popover& popover) {
    const auto found =
        std::ranges::find(_popovers, &popover, [](const auto& each) { return each.get(); });
    if (found == _popovers.end()) return;
    const auto alive = shared_from_this();
    const std::vector<std::shared_ptr<Popover>> closed(found, _popovers.end());
    _popovers.erase(found, _popovers.end());
    // Whoever has opened it by keys goes on where that was.
    setKeyFocus(_popovers.empty() ? _focusBefore.lock() : nullptr);
    dim();
    for (auto each = closed.rbegin(); each != closed.rend(); ++each)
        (*each)->didClose();
}

void Overlay::grab(const std::shared_ptr<Eyedropper>& view) {
    hideTip();
    if (superview()) superview()->bringSubviewToFront(*this);
    if (const auto before = _grabbing.lock()) before->cancel();
    _grabbing = view;
    addSubview(view);
    view->setFillsSuperview(true);
}

// A sheet is to be dealt with first.
void Overlay::dim() {
    constexpr gfx::Color shade{0, 0, 0, 0.4};
    const bool hasSheet =
        std::ranges::any_of(_popovers, [](const auto& each) { return each->isSheet(); });
    setBackgroundColor(hasSheet ? gfx::makeColor(shade) : nullptr);
}

void Overlay::closeAll() {
    if (!_popovers.empty()) close(*std::shared_ptr<Popover>(_popovers.front()));
}

void Overlay::layoutSubviews() {
    const auto popovers = _popovers;
    for (const auto& popover : popovers)
        popover->place();
    placeNote();
}

// ---- touches

// Lets everything through while nothing is open.
std::shared_ptr<View> Overlay::hitTest(gfx::Point p) {
    return _popovers.empty() && _grabbing.expired() ? nullptr : View::hitTest(p);
}

void Overlay::touchesBegan(const TouchEvent& /*event*/) {
    closeAll();
}

bool Overlay::admitsGesture(const GestureRecognizer& recognizer) const {
    return &recognizer == _watcher.get() ||
           (recognizer.view() && recognizer.view()->isDescendantOf(*this));
}

}  // namespace kalim::ui
