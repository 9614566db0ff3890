#include <algorithm>
#include <map>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasDocument.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/ToolEntry.h"
#include "kalimkit/shapes/ToolRegistry.h"

// Shapes as a text that any canvas understands, and back.

namespace kalim {

namespace {

// View points between a shape and its copy.
constexpr double copyOffset = 12;
// What a clipboard may hold for us: anybody may have put it there.
constexpr std::size_t longestClipping = std::size_t{16} << 20U;
constexpr std::size_t mostShapes = 10'000;

std::vector<DocumentTool> shapesIn(const std::string& text) {
    // A glance spares reading what is anything else.
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos || text[begin] != '{' || text.size() > longestClipping)
        return {};
    ReadDocument read = readDocument(text);
    if (read.problem || read.document.picture || read.document.tools.size() > mostShapes) return {};
    std::vector<DocumentTool>& shapes = read.document.tools;
    std::erase_if(shapes, [](const DocumentTool& shape) { return !shape.isOfKnownClass; });
    return std::move(shapes);
}

// Of a class that nobody has registered no copy can be made.
bool canBeCopied(const MDrawTool& tool) {
    const ToolClass& kind = tool.toolClass();
    return ToolRegistry::current().kindNamed(kind.name) == &kind;
}

}  // namespace

std::vector<DocumentTool> CanvasArrangement::chosenShapes() const {
    std::vector<DocumentTool> shapes;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (!_canvas.selection.contains(tool) || !canBeCopied(*tool)) continue;
        shapes.push_back(describeTool(*tool));
        shapes.back().isLocked = false;
    }
    return shapes;
}

std::string CanvasArrangement::copiedShapes() {
    if (!begin()) return {};
    Document document;
    document.generator = _canvas.document.head().generator;
    document.measuring.unit = "px";
    document.canvas.forgiving = _canvas.tools.forgiving();
    document.tools = chosenShapes();
    if (document.tools.empty()) return {};
    _pasted = documentText(document);
    _pastes = 0;
    return _pasted;
}

std::string CanvasArrangement::cutShapes() {
    std::string text = copiedShapes();
    if (text.empty()) return text;
    // The others stay, for they would not come back.
    ToolList copied = _canvas.selection.group()->subTools();
    const auto others =
        std::erase_if(copied, [](const ToolRef& tool) { return !canBeCopied(*tool); });
    if (others > 0) _canvas.selection.select(copied);
    _canvas.history.removeSelected();
    // They come back where they were.
    _pastes = -1;
    return text;
}

bool CanvasArrangement::duplicate() {
    return begin() && insert(chosenShapes(), std::nullopt, 1);
}

bool CanvasArrangement::pasteShapes(const std::string& text) {
    return paste(text, std::nullopt);
}

bool CanvasArrangement::pasteShapesAt(const std::string& text, gfx::Point middle) {
    return paste(text, middle);
}

bool CanvasArrangement::paste(const std::string& text, const std::optional<gfx::Point>& middle) {
    std::vector<DocumentTool> shapes = shapesIn(text);
    if (shapes.empty()) return false;
    begin();
    if (text != _pasted) {
        _pasted = text;
        _pastes = -1;
    }
    return insert(std::move(shapes), middle, ++_pastes);
}

// Numbers that nobody here has, the same for those that shared one.
void CanvasArrangement::renumberGroups(std::vector<DocumentTool>& shapes) const {
    std::int64_t next = nextGroup();
    std::map<std::int64_t, std::int64_t> numbers;
    for (DocumentTool& shape : shapes) {
        for (std::int64_t& group : shape.groups) {
            const auto [number, isNew] = numbers.try_emplace(group, next);
            if (isNew) ++next;
            group = number->second;
        }
    }
}

// How far copies of what has that frame go.
gfx::Point CanvasArrangement::placing(const gfx::Rect& frame,
                                      const std::optional<gfx::Point>& middle, int cascade) const {
    if (middle) return *middle - frame.center();
    const ZoomedCanvasView& view = _canvas.home.view();
    const gfx::AffineTransform toCanvas = view.mViewTransform().inverted();
    const gfx::Rect seen = toCanvas.apply(view.bounds());
    const gfx::Point beside =
        toCanvas.apply({copyOffset, copyOffset}) - toCanvas.apply(gfx::Point{});
    const gfx::Point offset = beside * cascade;
    if (seen.contains(frame.offset(offset).center())) return offset;
    return seen.center() - frame.center();
}

bool CanvasArrangement::insert(std::vector<DocumentTool> shapes,
                               const std::optional<gfx::Point>& middle, int cascade) {
    renumberGroups(shapes);
    const auto prepare = [this](MDrawTool& tool) { _canvas.tools.pen().applyShared(tool); };
    const auto added = MDrawMutableSelect::make();
    for (const DocumentTool& shape : shapes) {
        const ToolRef tool = makeTool(shape, prepare);
        if (!tool->isDrawVaild()) continue;
        _canvas.typing.adopt(tool);
        added->addSubTool(tool);
    }
    if (!added->isValidTools()) return false;
    gfx::Rect frame = added->subTools().front()->shownFrame();
    for (const ToolRef& tool : added->subTools())
        frame = frame.unionWith(tool->shownFrame());
    const gfx::Point offset = placing(frame, middle, cascade);
    for (const ToolRef& tool : added->subTools()) {
        tool->moveBy(offset);
        _canvas.tools.add(tool);
    }
    _canvas.tools.record(added);
    _canvas.home.redisplay();
    // What was too much has been taken back.
    if (!_canvas.tools.contains(added->firstSelectedTool())) return false;
    _canvas.selection.select(added->subTools());
    return true;
}

}  // namespace kalim
