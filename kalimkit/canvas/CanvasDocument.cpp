#include "kalimkit/canvas/CanvasDocument.h"

#include <map>
#include <utility>

#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasExport.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasPainter.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/DrawnExtent.h"
#include "kalimkit/canvas/SealedDocument.h"
#include "kalimkit/document/ToolEntry.h"
#include "kalimkit/gfx/Version.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// What tools say of their unit while nobody has chosen one.
constexpr const char* usualUnit = "px";
// A placeholder that does not know where it belongs takes so much of the picture, in its middle.
constexpr double placeholderShare = 0.4;

std::string versionText() {
    return reinterpret_cast<const char*>(KalimKitDylibFrameworkVersionString);
}

bool isGround(const MDrawTool& tool) {
    return tool.toolClass().layer() == ToolLayer::Ground;
}

gfx::Rect middleOf(const gfx::Rect& rect) {
    const double margin = (1 - placeholderShare) / 2;
    return rect.inset(rect.size.width * margin, rect.size.height * margin);
}

}  // namespace

// ---- saving

Document CanvasDocument::head() const {
    const CanvasPicture& picture = _canvas.shown.picture;
    const NewTools& pen = _canvas.tools.pen();
    Document document = _head;
    document.generator = std::string("KalimKit ") + versionText();
    document.isSealed = false;
    document.cut = picture.cut();
    if (picture.source()) {
        const gfx::PixelSize size = picture.source()->pixelSize();
        if (document.cut.crop == gfx::Rect(0, 0, size.width, size.height)) document.cut.crop = {};
    }
    if (const gfx::ImageRef& source = picture.source()) {
        if (!document.picture) document.picture.emplace();
        document.picture->size = source->pixelSize();
    } else {
        document.picture = std::nullopt;
    }
    document.canvas.pictureRect = picture.source() ? picture.rect() : gfx::Rect();
    document.canvas.background = _canvas.painter.background();
    const CanvasPicture::Settlement settlement = picture.settlement();
    document.canvas.basis = settlement.basis;
    document.canvas.bounds = settlement.canvas;
    document.canvas.scale = settlement.scale;
    document.canvas.clips = _canvas.content.clipsToPicture();
    document.canvas.forgiving = _canvas.tools.forgiving();
    document.canvas.textOutlines = _canvas.typing.maskColors();
    document.measuring.calibration = pen.calibration;
    document.measuring.unit = pen.unit.empty() ? usualUnit : pen.unit;
    document.measuring.show = pen.showMeasurement;
    return document;
}

Document CanvasDocument::document() {
    _canvas.exports.settle();
    Document document = head();
    document.tools.reserve(_canvas.tools.list().size());
    for (const ToolRef& tool : _canvas.tools.list())
        document.tools.push_back(describeTool(*tool));
    return document;
}

// Keys that are not known may tell of the whole picture, as a thumbnail does: those of tools alone
// go along, which is what they tell of.
void CanvasDocument::dropUnknown(Document& document) {
    document.others.clear();
    document.picture->others.clear();
    document.canvas.others.clear();
    document.measuring.others.clear();
}

SealedDocument CanvasDocument::sealed() {
    _canvas.exports.settle();
    SealedDocument sealed{head(), pictureWithPatches(), {}};
    Document& document = sealed.document;
    gfx::Rect& seen = document.canvas.pictureRect;
    if (sealed.picture) {
        document.isSealed = true;
        dropUnknown(document);
        seen = _canvas.shown.picture.part();
        sealed.exported.source = _canvas.shown.picture.source();
        sealed.exported.part =
            pixelPartOf(_canvas.shown.picture.cut(), sealed.exported.source->pixelSize());
        sealed.exported.hidden = _canvas.painter.hiding().hidden();
        const gfx::PixelSize size = sealed.picture->pixelSize();
        document.picture->size = size;
        document.cut.crop = gfx::Rect(0, 0, size.width, size.height);
        // What was cut at a crop's edge still is where that is the picture's.
        document.canvas.clips = _canvas.content.endsAtPicture();
    }
    // Beyond a picture that nothing is cut from there may be more to see.
    const bool isCut = sealed.picture && _canvas.content.endsAtPicture();
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (sealed.picture && isGround(*tool)) continue;
        // The shade is seen everywhere.
        const bool isShade = tool->toolClass().layer() == ToolLayer::Shade;
        if (isCut && !isShade && !seen.intersects(drawnExtent(*tool))) continue;
        document.tools.push_back(describeTool(*tool));
    }
    return sealed;
}

// At its own scale, pixel for pixel.
gfx::ImageRef CanvasDocument::pictureWithPatches() const {
    const CanvasHiding::Burn burn(_canvas.painter.hiding(), CanvasHiding::Copies::None);
    const gfx::ImageRef& source = _canvas.shown.picture.source();
    const gfx::Rect& place = _canvas.shown.picture.rect();
    if (burn.hasFailed() || !source || place.isEmpty()) return nullptr;
    const gfx::PixelSize pixels = source->pixelSize();
    const gfx::Rect whole(0, 0, pixels.width, pixels.height);
    const auto surface = ui::Environment::current().device().makeSurface(whole.size, 1, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::None);
    context.drawImage(*source, whole);
    context.scale(pixels.width / place.size.width, pixels.height / place.size.height);
    context.translate(-place.minX(), -place.minY());
    context.setInterpolation(gfx::Interpolation::High);
    const auto all = [](const MDrawTool&) { return true; };
    _canvas.painter.drawPatches(context, _canvas.painter.drawnPicture({source, place}, place), all,
                                all);
    const std::optional<gfx::Rect>& crop = _canvas.shown.picture.cut().crop;
    const gfx::ImageRef image = surface->makeImage();
    return crop ? MDrawImageUtil::imageFromImageInRect(image, *crop) : image;
}

// ---- opening

std::optional<std::string> CanvasDocument::problemOf(const Document& document,
                                                     const gfx::ImageRef& picture) {
    if (!document.picture) return std::nullopt;
    if (!picture) return "picture: it cannot be shown";
    if (!isCutOf(document.cut, document.picture->size)) return "crop is not inside the picture";
    gfx::PixelSize size = picture->pixelSize();
    if (gfx::exchangesSides(picture->orientation())) std::swap(size.width, size.height);
    if (size == document.picture->size) return std::nullopt;
    return "picture.size is not that of the picture, which has " + std::to_string(size.width) +
           " x " + std::to_string(size.height) + " pixels";
}

// Whoever wrote it may not have said more than where the picture lies.
CanvasPicture::Settlement CanvasDocument::settlementOf(const Document& document) {
    const DocumentCanvas& canvas = document.canvas;
    const bool hasBounds = canvas.basis == 0 && !canvas.bounds.isEmpty();
    return {hasBounds ? canvas.bounds : canvas.pictureRect, canvas.pictureRect, canvas.basis,
            canvas.scale};
}

void CanvasDocument::takeHead(const Document& document) {
    _head = document;
    _head.tools.clear();
    if (_head.picture) _head.picture->data.clear();
    _canvas.content.setClipsToPicture(document.canvas.clips);
    _canvas.typing.setMaskColors(document.canvas.textOutlines);
    NewTools& pen = _canvas.tools.pen();
    pen.calibration = document.measuring.calibration;
    pen.unit = document.measuring.unit;
    pen.showMeasurement = document.measuring.show;
    if (document.canvas.background) _canvas.painter.setBackground(document.canvas.background);
}

ToolList CanvasDocument::toolsOf(const Document& document) const {
    ToolList tools;
    tools.reserve(document.tools.size());
    const auto prepare = [this](MDrawTool& tool) { _canvas.tools.pen().applyShared(tool); };
    for (const DocumentTool& described : document.tools) {
        const ToolRef tool = makeTool(described, prepare);
        if (!described.isOfKnownClass && described.startPoint == described.endPoint) {
            const gfx::Rect middle = middleOf(_canvas.shown.picture.rect());
            tool->setStartPoint(middle.origin);
            tool->setEndPoint({middle.maxX(), middle.maxY()});
        }
        _canvas.typing.adopt(tool);
        tool->updatefeature();
        tools.push_back(tool);
    }
    return tools;
}

}  // namespace kalim
