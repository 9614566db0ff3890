#include "kalimkit/ui/desk/Popover.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double distance = 4;
constexpr double windowInset = 6;
constexpr double radius = 8;
constexpr double shadowBlur = 14;
constexpr double shadowDrop = 3;
// Of the arrows, in what is too high.
constexpr double scrollStep = 48;

// Lies in the view that a popover belongs to, and closes it when that goes.
class Tether : public View {
public:
    static std::shared_ptr<Tether> make(const std::shared_ptr<Popover>& popover) {
        const std::shared_ptr<Tether> tether(new Tether);
        tether->init({});
        tether->_popover = popover;
        tether->setUserInteractionEnabled(false);
        return tether;
    }

protected:
    // Later, as the tree of views is being changed.
    void didMoveToWindow() override {
        if (window() || !Environment::hasCurrent()) return;
        Environment::current().runLoop().async([weak = _popover] {
            if (const auto popover = weak.lock()) popover->close();
        });
    }

private:
    Tether() = default;
    std::weak_ptr<Popover> _popover;
};

// Along one axis: where a length begins within a room.
double within(double start, double length, double least, double most) {
    return std::max(std::min(start, most - length), least);
}

}  // namespace

gfx::Rect placeBeside(const gfx::Rect& anchor, gfx::Size size, const gfx::Rect& room,
                      PopoverEdge edge, double gap, bool isCentred) {
    const double above = anchor.minY() - gap - room.minY();
    const double below = room.maxY() - anchor.maxY() - gap;
    const double left = anchor.minX() - gap - room.minX();
    const double right = room.maxX() - anchor.maxX() - gap;
    if (edge == PopoverEdge::Below && below < size.height && above > below) {
        edge = PopoverEdge::Above;
    } else if (edge == PopoverEdge::Above && above < size.height && below > above) {
        edge = PopoverEdge::Below;
    } else if (edge == PopoverEdge::Right && right < size.width && left > right) {
        edge = PopoverEdge::Left;
    } else if (edge == PopoverEdge::Left && left < size.width && right > left) {
        edge = PopoverEdge::Right;
    }
    const bool isSideways = edge == PopoverEdge::Left || edge == PopoverEdge::Right;
    double x = isCentred ? anchor.midX() - size.width / 2 : anchor.minX();
    double y = isCentred ? anchor.midY() - size.height / 2 : anchor.minY();
    if (isSideways) {
        x = edge == PopoverEdge::Right ? anchor.maxX() + gap : anchor.minX() - gap - size.width;
    } else {
        y = edge == PopoverEdge::Below ? anchor.maxY() + gap : anchor.minY() - gap - size.height;
    }
    return {std::floor(within(x, size.width, room.minX(), room.maxX())),
            std::floor(within(y, size.height, room.minY(), room.maxY())), size.width, size.height};
}

// ---- making

std::shared_ptr<Popover> Popover::show(View& anchor, std::shared_ptr<View> content,
                                       const Options& options) {
    const std::shared_ptr<Popover> popover(new Popover);
    popover->_anchor = anchor.weak_from_this();
    popover->_hasAnchor = true;
    popover->_options = options;
    popover->_content = std::move(content);
    if (!anchor.window()) return nullptr;
    popover->_tether = Tether::make(popover);
    anchor.addSubview(popover->_tether);
    return open(*anchor.window(), popover);
}

std::shared_ptr<Popover> Popover::showAt(Window& window, const gfx::Rect& place,
                                         std::shared_ptr<View> content, const Options& options) {
    const std::shared_ptr<Popover> popover(new Popover);
    popover->_place = place;
    popover->_options = options;
    popover->_content = std::move(content);
    return open(window, popover);
}

std::shared_ptr<Popover> Popover::open(Window& window, std::shared_ptr<Popover> popover) {
    View::performWithoutAnimation([&] {
        popover->init({});
        popover->setAccessibilityRole(popover->_content->accessibilityRole() ==
                                              AccessibilityRole::None
                                          ? AccessibilityRole::Dialog
                                          : AccessibilityRole::None);
        popover->setAccessibilityLabel(popover->_content->accessibilityLabel());
        popover->setAccessibilityModal(true);
        popover->_holder = popover->_content;
        popover->addSubview(popover->_content);
        Overlay::in(window)->open(popover);
    });
    return popover;
}

// ---- closing

void Popover::close() {
    const auto alive = shared_from_this();
    const auto overlay =
        std::dynamic_pointer_cast<Overlay>(superview() ? superview()->shared_from_this() : nullptr);
    if (overlay) overlay->close(*this);
}

void Popover::didClose() {
    if (!std::exchange(_isOpen, false)) return;
    const auto alive = shared_from_this();
    removeFromSuperview();
    if (_tether) _tether->removeFromSuperview();
    if (const auto handler = std::exchange(_closeHandler, {})) handler();
}

bool Popover::handleKey(std::string_view key, bool isRepeated) {
    // A copy: it may replace itself.
    const KeyHandler handler = _keyHandler;
    if (handler && handler(key, isRepeated)) return true;
    const auto scroll = std::dynamic_pointer_cast<ScrollView>(_holder);
    if (!scroll || _holder == _content || (key != "up" && key != "down")) return false;
    // What has the focus may want the arrows itself.
    const auto overlay = window() ? Overlay::existingIn(*window()) : nullptr;
    if (!overlay || overlay->keyFocus()) return false;
    return scroll->pointerScrolled({}, {0, key == "up" ? scrollStep : -scrollStep});
}

// ---- layout

void Popover::place() {
    if (!_isOpen || !superview()) return;
    const auto anchor = _anchor.lock();
    if (_hasAnchor && (!anchor || anchor->window() != window())) return close();
    const gfx::Rect beside = superview()->mirrored(
        anchor ? anchor->convertRectTo(anchor->bounds(), superview()) : _place);
    const gfx::Rect room = superview()->bounds().inset(windowInset, windowInset);
    const double inset = _options.inset;
    const gfx::Size wanted = _content->frame().size;
    gfx::Size size{std::min(wanted.width + 2 * inset, room.size.width),
                   std::min(wanted.height + 2 * inset, room.size.height)};
    const bool isScrolled = size.height < wanted.height + 2 * inset;
    if (isScrolled && _holder == _content) {
        const auto scroll = ScrollView::initWithFrame({});
        scroll->setScrolledByWheel(true);
        scroll->addSubview(_content);
        addSubview(scroll);
        _holder = scroll;
        _content->setFrame({{}, {std::min(wanted.width, size.width - 2 * inset), wanted.height}});
    }
    if (const auto scroll = std::dynamic_pointer_cast<ScrollView>(_holder);
        scroll && _holder != _content) {
        scroll->setContentSize(wanted);
        scroll->setScrollEnabled(isScrolled);
    }
    _holder->setFrame({inset, inset, size.width - 2 * inset, size.height - 2 * inset});
    if (_options.isSheet) {
        setFrame({std::floor(room.midX() - size.width / 2),
                  std::floor(room.midY() - size.height / 2), size.width, size.height});
    } else {
        setFrame(placeBeside(beside, size, room, _options.edge, distance, _options.isCentred));
    }
    setShadow(gfx::Shadow{{0, shadowDrop}, shadowBlur, Palette::current().shadow});
}

// ---- drawing

void Popover::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    context.setFillColor(palette.raised);
    context.addPath(gfx::roundedRect(bounds(), radius));
    context.fill();
    context.setStrokeColor(palette.separator);
    context.setLineWidth(1);
    context.addPath(gfx::roundedRect(bounds().inset(0.5, 0.5), radius - 0.5));
    context.stroke();
}

}  // namespace kalim::ui
