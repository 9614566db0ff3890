#include "kalimkit/editor/bar/TesselTopTool.h"

#include <algorithm>

#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double sideMargin = 15;
constexpr double moreSide = 44;
constexpr double moreGap = 10;
constexpr double stepSide = 38;
constexpr double stepGap = 10;
constexpr double titleGap = 8;
// What a bar without a status area above its buttons has room for.
constexpr double plainInset = 20;
constexpr double leastTouchSide = 44;

// Takes touches on what a finger can meet, whatever its title's size.
class RoomyButton : public ui::Button {
public:
    static std::shared_ptr<RoomyButton> make() {
        const std::shared_ptr<RoomyButton> button(new RoomyButton);
        button->init({});
        return button;
    }
    bool pointInside(gfx::Point p) const override {
        const gfx::Size size = bounds().size;
        return bounds()
            .inset(std::min((size.width - leastTouchSide) / 2, 0.0),
                   std::min((size.height - leastTouchSide) / 2, 0.0))
            .contains(p);
    }

private:
    RoomyButton() = default;
};

std::string localized(const std::string& text) {
    return ui::Environment::current().localizedString(text);
}

}  // namespace

// ---- making

std::shared_ptr<TesselTopTool> TesselTopTool::init() {
    struct Constructible : TesselTopTool {};
    const std::shared_ptr<TesselTopTool> bar = std::make_shared<Constructible>();
    bar->init(gfx::Rect{});
    return bar;
}

void TesselTopTool::init(const gfx::Rect& frame) {
    View::init(frame);
    setBackgroundColor(colorWithHexStringAlpha("1d1d1d", 0.85));
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(localized("工具栏"));
    initSubviews();
    setUndoEnableRedoEnable(false, false);
}

void TesselTopTool::initSubviews() {
    _closeButton = RoomyButton::make();
    _confirmButton = TesselButton::initWithFrame({});
    _doneButton = RoomyButton::make();
    _moreButton = ui::Button::initWithFrame({});
    _undoButton = ui::Button::initWithFrame({});
    _redoButton = ui::Button::initWithFrame({});
    _wrapView = ui::View::initWithFrame({});
    prepareTitled(*_closeButton, "关闭", &TesselTopTool::handleClose);
    prepareTitled(*_confirmButton, "发送", &TesselTopTool::handleConfirm);
    prepareTitled(*_doneButton, "完成", &TesselTopTool::handleDone);
    preparePictured(*_moreButton, "更多", "icon_tool_more", &TesselTopTool::handleMore);
    preparePictured(*_undoButton, "撤销", "icon_tool_undo", &TesselTopTool::handleUndo);
    preparePictured(*_redoButton, "重做", "icon_tool_redo", &TesselTopTool::handleRedo);
    for (const auto& [button, image] : {std::pair{_undoButton, "icon_tool_undo_disable"},
                                        std::pair{_redoButton, "icon_tool_redo_disable"}}) {
        button->setImage(imageNamedForFramework(image), ui::ControlState::Disabled);
        _wrapView->addSubview(button);
    }
    _doneButton->setHidden(true);
    _moreButton->setHidden(true);
    addSubview(_closeButton);
    addSubview(_wrapView);
    addSubview(_moreButton);
    addSubview(_confirmButton);
    addSubview(_doneButton);
}

void TesselTopTool::prepareTitled(ui::Button& button, const std::string& title, Handler handler) {
    button.setTitle(localized(title));
    button.setTitleFont({"", 16});
    button.setTitleColor(gfx::makeColor(1, 1, 1));
    button.setTitleColor(gfx::makeColor(1, 1, 1, 0.8), ui::ControlState::Highlighted);
    button.setTitleColor(gfx::makeColor(1, 1, 1, 0.2), ui::ControlState::Disabled);
    button.addAction(ui::ControlEvent::TouchUpInside,
                     [weak = weak_from_this(), handler](ui::Control&) {
                         const auto bar = std::static_pointer_cast<TesselTopTool>(weak.lock());
                         if (bar) (bar.get()->*handler)();
                     });
}

void TesselTopTool::preparePictured(ui::Button& button, const std::string& label,
                                    const std::string& image, Handler handler) {
    prepareTitled(button, {}, handler);
    button.setImage(imageNamedForFramework(image));
    button.setAccessibilityLabel(localized(label));
}

// ---- layout

void TesselTopTool::layoutSubviews() {
    const ui::EdgeInsets safe = safeAreaInsets();
    // Below the middle of the bar where that has grown with the inset, clear of it.
    const double line = bounds().midY() + std::max(safe.top - plainInset, 0.0) / 2;
    const auto placeAt = [line](ui::View& view, double left, gfx::Size size) {
        view.setFrame({left, line - size.height / 2, size.width, size.height});
    };
    const double left = bounds().minX() + safe.left + sideMargin;
    const double right = bounds().maxX() - safe.right - sideMargin;
    const double middle = (left + right) / 2;
    const double steps = 2 * stepSide + stepGap;
    // A long title ends before undo and redo do begin.
    const double room = std::max(0.0, (right - left - steps) / 2 - titleGap);
    const auto sizeOf = [room](const ui::Button& button) {
        const gfx::Size size = button.intrinsicContentSize();
        return gfx::Size{std::min(size.width, room), size.height};
    };
    const gfx::Size confirmSize = sizeOf(*_confirmButton);
    const gfx::Size doneSize = sizeOf(*_doneButton);
    placeAt(*_closeButton, left, sizeOf(*_closeButton));
    placeAt(*_confirmButton, right - confirmSize.width, confirmSize);
    placeAt(*_doneButton, right - doneSize.width, doneSize);
    placeAt(*_moreButton, _confirmButton->frame().minX() - moreGap - moreSide,
            {moreSide, moreSide});
    placeAt(*_wrapView, middle - steps / 2, {steps, stepSide});
    _undoButton->setFrame({0, 0, stepSide, stepSide});
    _redoButton->setFrame({stepSide + stepGap, 0, stepSide, stepSide});
}

gfx::Rect TesselTopTool::freeRoom() const {
    const gfx::Rect steps = _wrapView->frame();
    const double left = steps.maxX() + titleGap;
    const double right =
        std::min(_confirmButton->frame().minX(), _doneButton->frame().minX()) - titleGap;
    const double top = steps.midY() - leastTouchSide / 2;
    return {left, top, std::max(right - left, 0.0), leastTouchSide};
}

// ---- state

void TesselTopTool::setUndoEnableRedoEnable(bool undo, bool redo) {
    _undoButton->setEnabled(undo);
    _redoButton->setEnabled(redo);
}

void TesselTopTool::setEditMode(bool isEditing) {
    _doneButton->setHidden(!isEditing);
    _confirmButton->setHidden(isEditing);
    _closeButton->setHidden(isEditing);
    _undoButton->setHidden(isEditing);
    _redoButton->setHidden(isEditing);
}

// ---- what the buttons do

void TesselTopTool::handleClose() {
    const auto alive = shared_from_this();
    const auto delegate = _delegate.lock();
    if (!delegate || !delegate->canContinueClose()) return;
    send(&TesselTopToolDelegate::clickToolClose);
}

void TesselTopTool::handleConfirm() {
    send(&TesselTopToolDelegate::clickToolConfirm);
}

void TesselTopTool::handleMore() {
    send(&TesselTopToolDelegate::clickToolMore);
}

void TesselTopTool::handleUndo() {
    send(&TesselTopToolDelegate::clickToolUndo);
}

void TesselTopTool::handleRedo() {
    send(&TesselTopToolDelegate::clickToolRedo);
}

void TesselTopTool::handleDone() {
    send(&TesselTopToolDelegate::clickToolDone);
}

void TesselTopTool::send(Message message) {
    const auto alive = shared_from_this();
    const auto delegate = _delegate.lock();
    if (!delegate) return;
    delegate->clickTool();
    (delegate.get()->*message)();
}

}  // namespace kalim
