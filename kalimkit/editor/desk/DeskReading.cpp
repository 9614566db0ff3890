#include "kalimkit/editor/desk/DeskReading.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/shapes/ToolRegistry.h"

namespace kalim {

namespace {

std::string rounded(double number) {
    return std::to_string(std::lround(number));
}

// Degrees from 0 to 359.
std::string degrees(double radians) {
    const double turned = std::fmod(radians * 180 / std::numbers::pi + 720, 360);
    return std::to_string(std::lround(turned) % 360) + "°";
}

// Lengths are pixels of the picture; where there is none, points.
std::string measuresOf(const MDrawTool& tool, double pixelsPerPoint) {
    const double pixels = pixelsPerPoint > 0 ? pixelsPerPoint : 1;
    const gfx::Point way = (tool.endPoint() - tool.startPoint()) * pixels;
    // Angles go counter-clockwise from the right, as people draw them.
    if (tool.toolClass().span() == ToolSpan::Line)
        return rounded(std::hypot(way.x, way.y)) + ", " + degrees(std::atan2(-way.y, way.x));
    const gfx::Rect frame = tool.rotateAngle() != 0 ? tool.frame() : tool.shownFrame();
    const gfx::Size size = frame.size * pixels;
    std::string text = rounded(size.width) + " × " + rounded(size.height);
    if (tool.rotateAngle() != 0) text += ", " + degrees(-tool.rotateAngle());
    return text;
}

// Nothing for several kinds, and for one without a pen.
std::optional<unsigned> penOf(const ToolList& tools) {
    const ToolClass& kind = tools.front()->toolClass();
    const auto isOther = [&kind](const ToolRef& tool) { return &tool->toolClass() != &kind; };
    if (std::ranges::any_of(tools, isOther)) return std::nullopt;
    const Pen* const pen = ToolRegistry::current().penOf(kind);
    return pen ? std::optional(pen->number) : std::nullopt;
}

// The ground and the shade have no colour of their own.
bool isColored(const ToolClass* kind) {
    return !kind || kind->layer() == ToolLayer::Items;
}

void readTool(const MDrawView& canvas, DeskReading& reading) {
    reading.color = canvas.color();
    reading.lineWidth = canvas.lineWidth();
    reading.drawType = canvas.drawType();
    const auto& group = canvas.handingTools();
    reading.hasSelection = group != nullptr && canvas.hasSelectedTools();
    const auto made = canvas.handingTool();
    if (made) reading.measured = measuresOf(*made, canvas.pixelsPerPoint());
    if (!reading.hasSelection) return;
    const auto first = group->firstSelectedTool();
    reading.subject = penOf(group->subTools());
    reading.color = first->color();
    reading.lineWidth = first->lineWidth();
    reading.drawType = first->drawType();
    if (made) return;
    // A group of one has no points of its own.
    const bool isOne = group->subTools().size() == 1;
    const MDrawTool& measured = isOne ? *first : static_cast<const MDrawTool&>(*group);
    reading.measured = measuresOf(measured, canvas.pixelsPerPoint());
}

void readStyle(const TesselViewController& editor, DeskReading& reading) {
    const MDrawView& canvas = *editor.drawView();
    const bool isMosaic = reading.subject == EditorPenMosaic;
    reading.isHiding = isMosaic && editor.offersHidingStyles();
    const auto& group = canvas.handingTools();
    reading.hasColor =
        reading.hasSelection
            ? std::ranges::any_of(group->subTools(),
                                  [](const auto& tool) { return isColored(&tool->toolClass()); })
            : isColored(canvas.drawToolClass());
    for (const ToolProperty* const property : canvas.toolProperties()) {
        if (!property->isHidden)
            reading.properties.emplace_back(property,
                                            canvas.toolProperty(std::string(property->name)));
    }
}

void readPicture(const MDrawView& canvas, DeskReading& reading) {
    const auto& picture = canvas.sourceImage();
    if (!picture) return;
    const PictureCut& cut = canvas.pictureCut();
    reading.pictureSize = turnedSize(partOf(cut, picture->pixelSize()).size, cut.quarterTurns);
    reading.magnification = canvas.magnification();
}

void readPointer(const MDrawView& canvas, gfx::Point place, DeskReading& reading) {
    const gfx::Point inView = canvas.convertPointFrom(place, nullptr);
    const auto pixel = canvas.picturePoint(canvas.invertViewPoint(inView));
    if (!pixel) return;
    const gfx::Point whole{std::floor(pixel->x), std::floor(pixel->y)};
    const gfx::Size size = reading.pictureSize;
    const bool isOnPicture =
        whole.x >= 0 && whole.y >= 0 && whole.x < size.width && whole.y < size.height;
    if (isOnPicture) reading.pointer = whole;
}

}  // namespace

DeskReading DeskReading::of(const TesselViewController& editor,
                            const std::optional<gfx::Point>& place) {
    DeskReading reading;
    const MDrawView& canvas = *editor.drawView();
    reading.penInHand = editor.currentPen();
    reading.subject = reading.penInHand;
    reading.isTyping = canvas.curEdittingTextTool() != nullptr;
    reading.isCropping = editor.editImageInitialView() != nullptr;
    reading.canUndo = canvas.canUndo();
    reading.canRedo = canvas.canRedo();
    readTool(canvas, reading);
    readStyle(editor, reading);
    readPicture(canvas, reading);
    if (place) readPointer(canvas, *place, reading);
    return reading;
}

}  // namespace kalim
