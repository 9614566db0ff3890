#include "kalimkit/ui/window/Window.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"
#include "kalimkit/ui/window/ViewController.h"

namespace kalim::ui {

namespace {

// Laying out may ask for more of it; after so many rounds the rest waits for the next display.
constexpr int mostLayoutRounds = 8;
// Edges that miss a device pixel's edge by less than this share of a pixel lie on it.
constexpr double pixelTolerance = 1e-6;

// Frames can be asked for only where there is somebody to give them.
void requestFrame() {
    if (Environment::hasCurrent()) Environment::current().runLoop().requestFrame();
}

}  // namespace

Window::Window(gfx::Size size)
    : _size(size),
      _scale(Environment::current().screen().scale),
      _root(View::initWithFrame({{}, size})),
      _windows(Environment::current().windows()) {
    _windows->push_back(this);
    _root->setWindow(this);
    addDamage({{}, _size});
}

Window::~Window() {
    setRootViewController(nullptr);
    setFirstResponder(nullptr);
    std::erase(*_windows, this);
    _root->setWindow(nullptr);
}

void Window::setSize(gfx::Size size) {
    _size = size;
    _scale = Environment::current().screen().scale;
    _surface = nullptr;
    _damage.clear();
    _drawn.clear();
    _root->setFrame({{}, size});
    addDamage({{}, _size});
}

// A copy, as the caller's may go while the controllers are told.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    if (controller == _controller) return;
    const std::shared_ptr<ViewController> before = std::exchange(_controller, controller);
    if (before) before->viewWillDisappear(false);
    if (controller) {
        controller->view();
        controller->viewWillAppear(false);
        controller->setNeedsStatusBarAppearanceUpdate();
    }
    if (before) {
        before->view()->setFillsSuperview(false);
        before->view()->removeFromSuperview();
        before->viewDidDisappear(false);
    }
    // One of them may have put another in the place.
    if (!controller || _controller != controller) return;
    _root->insertSubview(controller->view(), 0);
    controller->view()->setFillsSuperview(true);
    controller->view()->layoutIfNeeded();
    controller->viewDidAppear(false);
}

// ---- focus

void Window::setFirstResponder(const std::shared_ptr<View>& view) {
    const std::shared_ptr<View> before = firstResponder();
    if (before == view) return;
    _firstResponder = view;
    if (before) before->didResignFirstResponder();
    // The one that lost it may have given it to another.
    if (view && firstResponder() == view) view->didBecomeFirstResponder();
}

bool Window::takeKey(std::string_view key, bool isRepeated) {
    // A copy: it may replace itself.
    const KeyTaker taker = _keyTaker;
    return taker && taker(key, isRepeated);
}

void Window::endFocusIn(const View& subtree) {
    const std::shared_ptr<View> focused = firstResponder();
    if (focused && focused->isDescendantOf(subtree)) setFirstResponder(nullptr);
}

// ---- display

void Window::addDamage(const gfx::Rect& windowRect) {
    const gfx::Rect seen = windowRect.intersection({{}, _size});
    if (seen.isEmpty()) return;
    const double slack = pixelTolerance / _scale;
    _damage.add(seen.inset(slack, slack).roundedOut(_scale));
    requestFrame();
}

void Window::requestLayout() {
    _needsLayout = true;
    requestFrame();
}

void Window::layout() {
    for (int round = 0; _needsLayout && round < mostLayoutRounds; ++round) {
        _needsLayout = false;
        _root->layoutIfNeeded();
    }
}

void Window::display() {
    if (_isDisplaying) return;
    const FlagScope displaying(_isDisplaying);
    layout();
    _hover.refresh();
    if (_damage.isEmpty()) return;
    const bool canDraw = prepareSurface();
    const Damage damage = std::exchange(_damage, {});
    if (!canDraw) return;
    _lastDamage.clear();
    _lastCost = {};
    ++_frames;
    for (const gfx::Rect& rect : damage.rects())
        draw(rect);
}

// A new surface knows nothing of what the old one showed.
bool Window::prepareSurface() {
    if (_surface) return true;
    _surface = Environment::current().device().makeSurface(_size, _scale, false);
    addDamage({{}, _size});
    return _surface != nullptr;
}

void Window::draw(const gfx::Rect& rect) {
    const gfx::Rect pixels(std::round(rect.minX() * _scale), std::round(rect.minY() * _scale),
                           std::round(rect.size.width * _scale),
                           std::round(rect.size.height * _scale));
    _lastDamage.push_back(pixels);
    _drawn.add(pixels);
    _lastCost.pixels += std::llround(pixels.area());

    gfx::Context& context = _surface->context();
    const gfx::GraphicsStateGuard guard(context);
    context.clipToRect(rect);
    context.setBlendMode(gfx::BlendMode::Clear);
    context.fillRect(rect);
    context.setBlendMode(gfx::BlendMode::Normal);
    _lastCost.views += _root->paint(context, rect);
}

std::vector<gfx::Rect> Window::takeDrawn() {
    return std::exchange(_drawn, {}).rects();
}

}  // namespace kalim::ui
