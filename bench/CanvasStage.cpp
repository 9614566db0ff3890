#include "bench/CanvasStage.h"

#include "bench/Photo.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim::bench {

namespace {

constexpr gfx::Size screen{390, 844};
const gfx::Rect loneRect{20, 630, 100, 40};
constexpr int dragLength = 60;

}  // namespace

CanvasStage::CanvasStage(int toolCount, double side)
    : _window(std::make_unique<ui::Window>(screen)),
      _canvas(MDrawView::initWithFrame({{}, screen})),
      _topRect(60, 300, side, side) {
    _window->rootView()->addSubview(_canvas);
    _canvas->setSnipImage(_host.device().makeImage(photo(), 1, gfx::ImageOrientation::Up));
    addBox(loneRect);
    for (int i = 2; i < toolCount; ++i)
        addBox({10.0 + i * 37 % 330, 170.0 + i * 53 % 410, 40, 30});
    _onTop = addBox(_topRect);
    // Whatever moves comes to rest.
    _host.environment().wait(1);
    showFrame();
}

CanvasStage::~CanvasStage() = default;

ToolRef CanvasStage::addBox(const gfx::Rect& rect) {
    const auto box = MDrawRect::initWithStartPoint(rect.origin);
    box->setEndPoint({rect.maxX(), rect.maxY()});
    box->setLineWidth(4);
    box->setColor(gfx::makeColor(0.96, 0.2, 0.2));
    _canvas->addTool(box);
    return box;
}

// ---- the finger

void CanvasStage::down(gfx::Point p) {
    _window->fingersBegan({{1, _finger = p}});
    showFrame();
}

void CanvasStage::move(gfx::Point p) {
    _window->fingersMoved({{1, _finger = p}});
    showFrame();
}

void CanvasStage::up() {
    _window->fingersEnded({{1, _finger}});
    showFrame();
}

void CanvasStage::undo() {
    _canvas->undo();
    showFrame();
}

void CanvasStage::redo() {
    _canvas->redo();
    showFrame();
}

// ---- dragging

void CanvasStage::grabBoxOnTop() {
    _step = 0;
    // The finger lands on the box's left edge, between two handles.
    down({_topRect.minX(), _topRect.minY() + _topRect.size.height / 4});
    dragOn();
}

void CanvasStage::dragOn() {
    const bool isForth = _step++ / dragLength % 2 == 0;
    move(_finger + (isForth ? gfx::Point{1, 1} : gfx::Point{-1, -1}));
}

bool CanvasStage::isDragging() const {
    const gfx::Rect now = _onTop->frame();
    return _canvas->hasSelectedTools() && now.size == _topRect.size &&
           now.origin != _topRect.origin;
}

void CanvasStage::pressLoneBox() {
    down({loneRect.minX() + loneRect.size.width / 4, loneRect.minY()});
}

void CanvasStage::pullLoneBox() {
    move(_finger + gfx::Point{2, 2});
}

void CanvasStage::releaseLoneBox() {
    up();
    _canvas->undo();
    showFrame();
}

}  // namespace kalim::bench
