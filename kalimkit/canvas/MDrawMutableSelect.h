#pragma once

#include <array>
#include <functional>
#include <string_view>

#include "kalimkit/canvas/MemberStates.h"
#include "kalimkit/canvas/SelectionFrame.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/shapes/MDrawRect.h"

namespace kalim {

// The canvas's selection: a tool that stands in for its members. With one member it is transparent:
// every question and command goes to that member. With several it acts as one box with a single
// handle that scales them all. Copies of it serve as undo entries.
//
// Under forgiving rules the box of several bounds them as they are seen, turned, has a handle at
// each corner, and all that they can do is done to lines as well: CanvasGrip moves, scales and
// turns them. With fine handles (ToolRules) it has those of SelectionFrame, and so has a single
// member besides its own.
class KALIM_API MDrawMutableSelect : public MDrawRect {
public:
    // The operations that go to the members instead of the group itself, and those that would go
    // only to a single member: a placeholder, so none does.
    static constexpr std::array<std::string_view, 9> arrMutableMethod{
        "setLineWidth:",           "setSelected:",          "finalize",     "setColor:",
        "rotateChangedWithAngle:", "rotateEndedWithAngle:", "invertPoint:", "stopMoveHandle",
        "setHandleViewScale:"};
    static constexpr std::array<std::string_view, 1> arrSingleMethod{"xxx:"};

    // ---- making and identity
    static std::shared_ptr<MDrawMutableSelect> make();
    // The same members, not copies of them.
    std::shared_ptr<MDrawMutableSelect> copy() const;
    ToolRef copyOfGroup() const override { return copy(); }
    static const ToolClass& Class();
    const ToolClass& toolClass() const override { return Class(); }
    // Holds for the same members in any order.
    bool isEqual(const MDrawTool* other) const;

    // ---- members, in the order they were selected
    const ToolList& subTools() const { return _subTools; }
    bool containTool(const ToolRef& tool) const override;
    void addSubTool(const ToolRef& tool) override;
    void removeSubTool(const ToolRef& tool) override;
    // A valid group is not empty.
    bool isValidTools() const { return !_subTools.empty(); }
    bool isDrawVaild() const override { return isValidTools(); }
    ToolRef firstSelectedTool() const;
    bool mutabaleToolObjType() const override { return true; }
    void addSubToolToArray(ToolList& list) const override;
    void removeSubToolFromArray(ToolList& list) const override;

    // ---- common properties
    // -1 (all bits set) where the members differ.
    std::uint64_t drawType() const override;
    // Null unless every member holds the very same colour object.
    gfx::ColorRef color() const override;
    // 0 where the members differ.
    double lineWidth() const override;
    using MDrawRect::setDrawType;
    // Sets the style of the members that are exactly of that class.
    void setDrawTypeForType(std::uint64_t drawType, const ToolClass* toolClass);

    // ---- geometry and hit testing
    // The union of the members' frames; the zero rectangle when empty.
    gfx::Rect frame() const override;
    // The box and the handles that the selection itself has, under forgiving rules.
    SelectionFrame selectionFrame() const;
    // The part of the canvas that is in sight: no handle is put elsewhere.
    void setSight(const gfx::Rect& sight) { _sight = sight; }
    // What the last hitOnHandle() has found, of the selection or of a single member.
    MoveDirection grip() const;
    // Whether that is a handle of the selection's own.
    bool ownsGrip() const;
    // Lies a point right of and a point above the union's lower-right corner; the asymmetry is
    // meant.
    gfx::Point HandlePoint() const;
    bool hitTest(gfx::Point p) override;
    bool hitOnHandle(gfx::Point p) override;
    bool testHitOnHandle(gfx::Point p) override;
    bool isSupportGestureRotate() const override;

    // ---- editing
    // Lines in a group of several do not move with its body; deliberate.
    gfx::Point tryMovePointEndPoint(gfx::Point p1, gfx::Point p2) override;

    // ---- forwarded to the members
    void setLineWidth(double width) override;
    void setSelected(bool selected) override;
    using MDrawRect::finalize;
    void finalize() override;
    void setColor(gfx::ColorRef color) override;
    void rotateChangedWithAngle(double angle) override;
    void rotateEndedWithAngle(double angle) override;
    // The answer of the last member.
    gfx::Point invertPoint(gfx::Point p) const override;
    void stopMoveHandle() override;
    void growToLineWidth() override;
    void setHandleViewScale(double scale) override;
    void setViewScale(double scale) override;
    // No finger has hold of a member any more.
    void releaseHandles();
    // The next turn begins from the members' present angles.
    void beginRotation();

    // ---- drawing
    void draw(gfx::Context& context) override;
    // What shows that the members are selected, and nothing else of them.
    void drawHandles(gfx::Context& context);
    void drawContentHandle(gfx::Context& context) override;
    void drawMeasurement(gfx::Context& context) override;
    void setVisibleRect(const std::optional<gfx::Rect>& rect) override;
    void setGround(ToolGround* ground) override;

    // ---- history, for the copies on the undo stacks
    bool updatefeature() override;
    bool hasUnrecordedChange() const override;
    bool undo(const ToolStep& step) override;
    bool redo(const ToolStep& step) override;
    void resetRedo() override;
    void reset() override;

protected:
    MDrawMutableSelect() = default;
    MoveDirection handleAt(gfx::Point p) override;

private:
    bool hasSeveral() const { return _subTools.size() > 1; }
    // Whether it is the box that forgiving rules make of several.
    bool isForgivingGroup() const { return hasSeveral() && rules().forgiving; }
    bool hitOnOwnHandle(gfx::Point p);
    void turnTo(double angle);
    void drawSelectionFrame(gfx::Context& context) const;
    void forward(const std::function<void(MDrawTool&)>& operation) const;
    void moveMember(MDrawTool& member, float factor, gfx::Point p1, gfx::Point p2) const;

    ToolList _subTools;
    gfx::Rect _sight;
    // As the members were when a turn of several began; empty while none does.
    MemberStates _turned;
    gfx::Point _turnCenter;
};

}  // namespace kalim
