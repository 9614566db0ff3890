#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/canvas/Alignment.h"
#include "kalimkit/canvas/DrawingOrder.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

class CanvasDocument;
class CanvasFinger;
class CanvasHistory;
class CanvasHome;
class CanvasSelection;
class CanvasTools;
class CanvasTyping;
struct CanvasShown;

// What people do with finished shapes besides dragging them. Each operation first ends what is
// under way, is one step of undo, and answers whether there was anything to do. All but the
// choosing ones are for the selection; locked shapes stay where they are, and shapes of a group are
// aligned, distributed and picked as one. Points are canvas points.
class KALIM_API CanvasArrangement {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasShown& shown;
        CanvasTools& tools;
        CanvasSelection& selection;
        CanvasTyping& typing;
        CanvasFinger& finger;
        CanvasHistory& history;
        CanvasDocument& document;
    };
    explicit CanvasArrangement(const Canvas& canvas) : _canvas(canvas) {}
    CanvasArrangement(const CanvasArrangement&) = delete;
    CanvasArrangement& operator=(const CanvasArrangement&) = delete;

    // ---- choosing; no steps
    // Everything that a finger can pick.
    bool selectAll();
    // What lies at a point, with its group, unless it is selected already; nothing happens where
    // nothing can be picked.
    bool selectAt(gfx::Point p);
    // What a rectangle meets, but for what lies around all of it; with their groups.
    bool selectWithin(const gfx::Rect& rect);

    // ---- places
    // By an offset as it is seen, whichever way the picture is turned. What comes within a second
    // of the one before is the same step.
    bool nudge(gfx::Point offset);
    // The selection's box grows by so many points as it is seen, to the right and downwards, on a
    // forgiving canvas; not where a shape would have no size left. A step like that of nudge(), and
    // the same where they follow each other.
    bool resize(gfx::Point growth);
    // About its middle, radians clockwise; likewise.
    bool turn(double angle);
    // Along the selection's own edge, or the picture's where it is a single shape or group. Edges
    // and directions are those that are seen, too.
    bool align(Alignment alignment);
    bool distribute(Direction direction);
    bool changeOrder(OrderChange change);

    // ---- groups and locks
    // Of groups it makes a larger one.
    bool group();
    // Takes the outermost groups apart.
    bool ungroup();
    // What is locked is let go: only select commands pick it from then on.
    bool lock();
    // Without a selection all that is locked, and selects it.
    bool unlock();

    // ---- copies; of registered classes alone
    bool duplicate();
    // The text of a document of the shapes, for a clipboard; empty for none.
    std::string copiedShapes();
    // The same, and they are deleted.
    std::string cutShapes();
    // Selects the shapes of such a text, a little beside where they were copied, or in the middle
    // of what is to be seen where that is elsewhere. Whatever else the text is, nothing happens.
    bool pasteShapes(const std::string& text);
    // The same with their middle at a point.
    bool pasteShapesAt(const std::string& text, gfx::Point middle);

    // ---- for the canvas's other parts
    // Moves one after the other are not a step yet.
    bool isNudging() const { return _nudged != nullptr; }
    void endNudging();

private:
    // What is moved as one.
    struct Unit {
        ToolList tools;
        gfx::Rect frame;
    };

    bool begin();
    template <typename Change>
    bool changeByKey(Change change);
    void stretch(const ToolList& tools, gfx::Point growth) const;
    ToolList movable() const;
    static std::vector<Unit> unitsOf(const ToolList& tools);
    gfx::AffineTransform toSeen() const;
    std::vector<gfx::Rect> seenFrames(const std::vector<Unit>& units) const;
    bool moveUnits(const std::vector<Unit>& units, const std::vector<gfx::Point>& offsets);
    bool record(const ToolList& tools);
    std::int64_t nextGroup() const;

    // ---- copies (CanvasArrangementCopies.cpp)
    std::vector<DocumentTool> chosenShapes() const;
    bool insert(std::vector<DocumentTool> shapes, const std::optional<gfx::Point>& middle,
                int cascade);
    gfx::Point placing(const gfx::Rect& frame, const std::optional<gfx::Point>& middle,
                       int cascade) const;
    void renumberGroups(std::vector<DocumentTool>& shapes) const;
    bool paste(const std::string& text, const std::optional<gfx::Point>& middle);

    Canvas _canvas;
    // The selection that is nudged, and the call that ends it; null and 0 while none is.
    std::shared_ptr<MDrawMutableSelect> _nudged;
    std::uint64_t _nudgingEnd = 0;
    // What was copied or pasted last, and how often it has been pasted since.
    std::string _pasted;
    int _pastes = 0;
};

}  // namespace kalim
