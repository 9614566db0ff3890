#include "kalimkit/editor/screen/EditorStage.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Takes no touches but for what is in it.
class ClearView : public ui::View {
public:
    static std::shared_ptr<ClearView> make(const gfx::Rect& frame) {
        const std::shared_ptr<ClearView> view(new ClearView);
        view->init(frame);
        view->setFillsSuperview(true);
        return view;
    }
    std::shared_ptr<ui::View> hitTest(gfx::Point p) override {
        const auto hit = View::hitTest(p);
        return hit.get() == this ? nullptr : hit;
    }

private:
    ClearView() = default;
};

}  // namespace

void EditorStage::layout() const {
    view().setNeedsLayout();
    view().layoutIfNeeded();
}

// ---- what lies over the canvas

void EditorStage::makeChrome() {
    _chrome = ClearView::make(view().bounds());
    view().addSubview(_chrome);
    showShell();
}

void EditorStage::setShell(std::shared_ptr<EditorShell> shell) {
    if (_shell) _shell->view()->removeFromSuperview();
    _shell = std::move(shell);
    if (_chrome) showShell();
}

// The shell lies where the phone's bars do, so that whatever is over those is over it.
void EditorStage::showShell() {
    _chrome->setHidden(_shell != nullptr || _isReadOnly);
    view().setBackgroundColor(_shell ? _shell->groundColor() : gfx::makeColor(0, 0, 0));
    view().setNeedsLayout();
    if (!_shell) return;
    const auto& views = view().subviews();
    const auto place = std::ranges::find(views, _chrome);
    _shell->view()->setFrame(view().bounds());
    view().insertSubview(_shell->view(), static_cast<std::size_t>(place - views.begin()) + 1);
    tellShell();
}

void EditorStage::setReadOnly(bool isReadOnly) {
    _isReadOnly = isReadOnly;
    if (!_chrome) return;
    _chrome->setHidden(_shell != nullptr || _isReadOnly);
    view().setNeedsLayout();
    tellShell();
}

void EditorStage::tellShell() const {
    if (_shell) _shell->editorDidChange();
}

// ---- time

std::function<void()> EditorStage::whileThere(std::function<void()> step) const {
    return [weakScreen = _screen.weak_from_this(), step = std::move(step)] {
        if (const auto alive = weakScreen.lock()) step();
    };
}

void EditorStage::after(double delay, std::function<void()> step) const {
    ui::Environment::current().runLoop().after(delay, whileThere(std::move(step)));
}

std::function<void(bool)> EditorStage::atEnd(std::function<void()> step) const {
    return [run = whileThere(std::move(step))](bool) { run(); };
}

}  // namespace kalim
