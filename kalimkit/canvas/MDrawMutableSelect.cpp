#include "kalimkit/canvas/MDrawMutableSelect.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kalim {

namespace {

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

std::shared_ptr<MDrawMutableSelect> MDrawMutableSelect::make() {
    return makeAt<MDrawMutableSelect>({});
}

std::shared_ptr<MDrawMutableSelect> MDrawMutableSelect::copy() const {
    const auto group = make();
    group->setIsMutableTool(isMutableTool());
    group->_subTools = _subTools;
    return group;
}

const ToolClass& MDrawMutableSelect::Class() {
    static const ToolClass toolClass{"MDrawMutableSelect", &MDrawRect::Class(), nullptr};
    return toolClass;
}

bool MDrawMutableSelect::isEqual(const MDrawTool* other) const {
    if (other == this) return true;
    if (!other || &other->toolClass() != &Class()) return false;
    const auto& group = static_cast<const MDrawMutableSelect&>(*other);
    return group._subTools.size() == _subTools.size() &&
           std::ranges::all_of(_subTools,
                               [&](const ToolRef& tool) { return group.containTool(tool); });
}

// ---- members

bool MDrawMutableSelect::containTool(const ToolRef& tool) const {
    return tool && std::ranges::find(_subTools, tool) != _subTools.end();
}

void MDrawMutableSelect::addSubTool(const ToolRef& tool) {
    if (!tool) return;
    _subTools.push_back(tool);
    reCalcCenter();
}

void MDrawMutableSelect::removeSubTool(const ToolRef& tool) {
    if (!tool) return;
    const ToolRef kept = tool;  // The caller's reference may be an element of the list.
    std::erase(_subTools, kept);
    reCalcCenter();
}

ToolRef MDrawMutableSelect::firstSelectedTool() const {
    return _subTools.empty() ? nullptr : _subTools.front();
}

void MDrawMutableSelect::addSubToolToArray(ToolList& list) const {
    for (const ToolRef& tool : _subTools) {
        if (std::ranges::find(list, tool) == list.end()) list.push_back(tool);
    }
}

void MDrawMutableSelect::removeSubToolFromArray(ToolList& list) const {
    std::erase_if(list, [this](const ToolRef& tool) { return containTool(tool); });
}

// ---- common properties

std::uint64_t MDrawMutableSelect::drawType() const {
    constexpr std::uint64_t mixed = ~std::uint64_t{0};
    if (_subTools.empty()) return mixed;
    const std::uint64_t first = _subTools.front()->drawType();
    const bool same = std::ranges::all_of(
        _subTools, [&](const ToolRef& tool) { return tool->drawType() == first; });
    return same ? first : mixed;
}

gfx::ColorRef MDrawMutableSelect::color() const {
    if (_subTools.empty()) return nullptr;
    const gfx::ColorRef first = _subTools.front()->color();
    // Colours are the same by identity, not by value.
    const bool same =
        std::ranges::all_of(_subTools, [&](const ToolRef& tool) { return tool->color() == first; });
    return same ? first : nullptr;
}

double MDrawMutableSelect::lineWidth() const {
    if (_subTools.empty()) return 0;
    const double first = _subTools.front()->lineWidth();
    const bool same = std::ranges::all_of(
        _subTools, [&](const ToolRef& tool) { return tool->lineWidth() == first; });
    return same ? first : 0;
}

void MDrawMutableSelect::setDrawTypeForType(std::uint64_t drawType, const ToolClass* toolClass) {
    for (const ToolRef& tool : _subTools) {
        if (&tool->toolClass() == toolClass) tool->setDrawType(drawType);
    }
}

// ---- geometry and hit testing

gfx::Rect MDrawMutableSelect::frame() const {
    if (_subTools.empty()) return {};
    const bool isShown = isForgivingGroup();
    const auto frameOf = [isShown](const ToolRef& tool) {
        return isShown ? tool->shownFrame() : tool->frame();
    };
    gfx::Rect whole = frameOf(_subTools.front());
    for (const ToolRef& tool : _subTools)
        whole = whole.unionWith(frameOf(tool));
    return whole;
}

gfx::Point MDrawMutableSelect::HandlePoint() const {
    const gfx::Rect box = frame();
    return {box.maxX() + 1.0, box.maxY() - 1.0};
}

bool MDrawMutableSelect::hitTest(gfx::Point p) {
    if (_subTools.size() == 1) return _subTools.front()->hitTest(p);
    const auto isHit = [p](const ToolRef& member) { return member->hitTest(p); };
    return frame().contains(p) || (rules().forgiving && std::ranges::any_of(_subTools, isHit));
}

MoveDirection MDrawMutableSelect::handleAt(gfx::Point p) {
    if (isForgivingGroup()) {
        const MoveDirection handle = selectionFrame().handleAt(p);
        if (handle != MoveDirection::None) return handle;
        return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
    }
    const gfx::Rect box = frame();
    // The handle is the group's, whichever way a member is turned.
    if (isOnCorner(p, MoveDirection::BottomRight, box)) return MoveDirection::Scale;
    return hitTest(p) ? MoveDirection::Body : MoveDirection::None;
}

bool MDrawMutableSelect::hitOnHandle(gfx::Point p) {
    if (_subTools.size() == 1) return hitOnOwnHandle(p) || _subTools.front()->hitOnHandle(p);
    // The group may have moved since its members came together.
    if (rules().forgiving) reCalcCenter();
    return MDrawRect::hitOnHandle(p);
}

bool MDrawMutableSelect::testHitOnHandle(gfx::Point p) {
    if (_subTools.size() == 1) {
        return selectionFrame().handleAt(p) != MoveDirection::None ||
               _subTools.front()->testHitOnHandle(p);
    }
    return MDrawRect::testHitOnHandle(p);
}

bool MDrawMutableSelect::isSupportGestureRotate() const {
    if (_subTools.size() == 1) return _subTools.front()->isSupportGestureRotate();
    return _subTools.empty() || rules().forgiving;
}

// ---- editing

gfx::Point MDrawMutableSelect::tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) {
    if (_subTools.empty()) return p1;
    if (_subTools.size() == 1) {
        _subTools.front()->setIsMutableTool(false);
        return _subTools.front()->tryMovePointEndPoint(p1, p2);
    }
    float factor = 1.0F;
    if (_moveDirection == MoveDirection::Scale) {
        const double before = distance(preScalePoint(), centerPoint());
        if (preScalePoint() == p2 || !(before > 0)) return p1;
        // Only the quotient is narrowed, on purpose.
        factor = static_cast<float>(distance(p2, centerPoint()) / before);
    }
    for (const ToolRef& member : _subTools)
        moveMember(*member, factor, p1, p2);
    setPreScalePoint(HandlePoint());
    return p2;
}

void MDrawMutableSelect::moveMember(MDrawTool& member, float factor, gfx::Point p1,
                                    gfx::Point p2) const {
    if (_moveDirection != MoveDirection::Body) {
        member.setMoveDirection(MoveDirection::Scale);
        member.setZoomScale(factor);
        member.setCenterPoint(centerPoint());
        member.setPreScalePoint(preScalePoint());
    } else if (const auto own = member.toolClass().moveInGroup(); own != MoveDirection::None) {
        member.setMoveDirection(own);
    }
    member.tryMovePointEndPoint(p1, p2);
}

// ---- forwarded

void MDrawMutableSelect::forward(const std::function<void(MDrawTool&)>& operation) const {
    for (const ToolRef& member : _subTools) {
        member->setIsMutableTool(hasSeveral());
        operation(*member);
    }
}

void MDrawMutableSelect::setLineWidth(double width) {
    forward([&](MDrawTool& member) { member.setLineWidth(width); });
}

void MDrawMutableSelect::setSelected(bool selected) {
    forward([&](MDrawTool& member) { member.setSelected(selected); });
}

void MDrawMutableSelect::finalize() {
    forward([](MDrawTool& member) { member.finalize(); });
}

void MDrawMutableSelect::setColor(gfx::ColorRef color) {
    forward([&](MDrawTool& member) { member.setColor(color); });
}

void MDrawMutableSelect::rotateChangedWithAngle(double angle) {
    if (isForgivingGroup()) return turnTo(angle);
    forward([&](MDrawTool& member) { member.rotateChangedWithAngle(angle); });
}

void MDrawMutableSelect::rotateEndedWithAngle(double angle) {
    if (isForgivingGroup()) {
        turnTo(angle);
        _turned = {};
        return;
    }
    forward([&](MDrawTool& member) { member.rotateEndedWithAngle(angle); });
}

gfx::Point MDrawMutableSelect::invertPoint(gfx::Point p) const {
    gfx::Point inverted = p;
    forward([&](MDrawTool& member) { inverted = member.invertPoint(p); });
    return inverted;
}

void MDrawMutableSelect::stopMoveHandle() {
    forward([](MDrawTool& member) { member.stopMoveHandle(); });
}

void MDrawMutableSelect::growToLineWidth() {
    forward([](MDrawTool& member) { member.growToLineWidth(); });
}

void MDrawMutableSelect::releaseHandles() {
    forward([](MDrawTool& member) { member.setMoveDirection(MoveDirection::None); });
}

void MDrawMutableSelect::beginRotation() {
    forward([](MDrawTool& member) { member.setLastRotateAngle(member.rotateAngle()); });
    _turned = {};
}

void MDrawMutableSelect::setHandleViewScale(double scale) {
    forward([&](MDrawTool& member) { member.setHandleViewScale(scale); });
}

// The handle of several is the group's own.
void MDrawMutableSelect::setViewScale(double scale) {
    MDrawRect::setViewScale(scale);
    forward([&](MDrawTool& member) { member.setViewScale(scale); });
}

// ---- drawing

void MDrawMutableSelect::draw(gfx::Context& context) {
    if (_subTools.empty()) return;
    {
        gfx::GraphicsStateGuard guard(context);
        forward([&](MDrawTool& member) { member.draw(context); });
    }
    drawSelectionFrame(context);
    if (!hasSeveral() || rules().forgiving) return;
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(*handleFillColor());
    context.setStrokeColor({1, 1, 1, 1});
    drawContentHandle(context);
}

void MDrawMutableSelect::drawContentHandle(gfx::Context& context) {
    drawHandleAtPoint(context, HandlePoint());
}

void MDrawMutableSelect::drawMeasurement(gfx::Context& context) {
    forward([&](MDrawTool& member) { member.drawMeasurement(context); });
}

void MDrawMutableSelect::setVisibleRect(const std::optional<gfx::Rect>& rect) {
    forward([&](MDrawTool& member) { member.setVisibleRect(rect); });
}

void MDrawMutableSelect::setGround(ToolGround* ground) {
    forward([&](MDrawTool& member) { member.setGround(ground); });
}

// ---- history

bool MDrawMutableSelect::updatefeature() {
    if (_subTools.size() == 1) return _subTools.front()->updatefeature();
    for (const ToolRef& member : _subTools)
        member->updatefeature();
    return true;
}

bool MDrawMutableSelect::hasUnrecordedChange() const {
    return std::ranges::any_of(_subTools,
                               [](const ToolRef& tool) { return tool->hasUnrecordedChange(); });
}

bool MDrawMutableSelect::undo(const ToolStep& step) {
    if (_subTools.size() == 1) return step(_subTools.front());
    for (const ToolRef& member : _subTools)
        step(member);
    return true;
}

bool MDrawMutableSelect::redo(const ToolStep& step) {
    return undo(step);
}

void MDrawMutableSelect::resetRedo() {
    for (const ToolRef& member : _subTools)
        member->resetRedo();
}

void MDrawMutableSelect::reset() {
    for (const ToolRef& member : _subTools)
        member->reset();
    _subTools.clear();
}

}  // namespace kalim
