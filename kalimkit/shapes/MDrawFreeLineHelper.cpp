#include "kalimkit/shapes/MDrawFreeLineHelper.h"

#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr int fadeFrameInterval = 3;
constexpr double fadeStep = 0.033;
// An alpha above this jumps past the end at once.
constexpr double fadeJumpThreshold = 0.9;
constexpr double fadeJump = 0.9;
constexpr double opaque = 1.0;

}  // namespace

std::shared_ptr<MDrawFreeLineHelper> MDrawFreeLineHelper::init() {
    const std::shared_ptr<MDrawFreeLineHelper> helper(new MDrawFreeLineHelper);
    helper->initProperty();
    return helper;
}

std::shared_ptr<MDrawFreeline> MDrawFreeLineHelper::freelineTool(const ToolClass& kind) {
    if (_freeline && &_freeline->toolClass() != &kind) {
        finalizeFreeline();
        complete();
        _freeline = nullptr;
    }
    if (_freeline) {
        _firstFreelinPart = false;
    } else {
        _freeline = std::static_pointer_cast<MDrawFreeline>(kind.makeWithStartPoint({}));
    }
    initProperty();
    _freeline->setNeedNewLine(true);
    return _freeline;
}

void MDrawFreeLineHelper::drawPause() {
    const auto self = shared_from_this();
    if (_freeline && !_enable) {
        _freeline->setMaskColorByAlpha(opaque);
        finalizeFreeline();
        complete();
        _freeline = nullptr;
    }
    initProperty();
    if (!_freeline || !_freeline->isDrawVaild()) return;
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    _displayLink = std::make_unique<ui::DisplayLink>(loop, [this](ui::Time) { displayLink(); });
    _displayLink->setFrameInterval(fadeFrameInterval);
    _displayLink->setPaused(false);
}

void MDrawFreeLineHelper::reset() {
    if (_freeline) finalizeFreeline();
    _freeline = nullptr;
    initProperty();
    _firstFreelinPart = true;
}

void MDrawFreeLineHelper::initProperty() {
    _displayLink.reset();
    _alpha = Freeline_default_alpha;
    if (_freeline) _freeline->setMaskColorByAlpha(_alpha);
}

void MDrawFreeLineHelper::displayLink() {
    const auto self = shared_from_this();
    _freeline->setMaskColorByAlpha(_alpha);
    _alpha += fadeStep;
    if (_alpha > fadeJumpThreshold) _alpha += fadeJump;
    if (_alpha > opaque) {
        finalizeFreeline();
        complete();
        initProperty();
        _freeline = nullptr;
    }
    if (const auto receiver = delegate()) receiver->drawFreelinePropertyChanged(_freeline);
}

void MDrawFreeLineHelper::finalizeFreeline() {
    _freeline->setIsNewBuild(false);
    _freeline->finalize();
}

void MDrawFreeLineHelper::complete() {
    // A reference of its own: the receiver may reset this object.
    const std::shared_ptr<MDrawFreeline> finished = _freeline;
    if (const auto receiver = delegate()) receiver->drawFreelineComplate(finished);
    _firstFreelinPart = true;
}

}  // namespace kalim
