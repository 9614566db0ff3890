#include "kalimkit/editor/screen/ToolChoice.h"

#include <algorithm>
#include <optional>

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/shapes/ToolRegistry.h"
#include "kalimkit/theme/HexColor.h"

namespace kalim {

namespace {

constexpr unsigned firstPen = EditorPenArrow;
constexpr unsigned firstSize = 1;

}  // namespace

void ToolChoice::begin() {
    _color = colorWithHexString(editorColors().front());
    _penNumber = firstPen;
    _size = firstSize;
    _pen.view()->setColor(_color);
    _pen.view()->setPen(_penNumber);
    _pen.view()->setSize(_size);
    _pickers.penPicker()->setSelectIndex(0);
    _pickers.colorPicker()->setSelectIndex(0);
    _pickers.sizePicker()->setSelectIndex(firstSize);

    MDrawView& canvas = *_picture.canvas();
    canvas.setDrawColorIsTranslucent(_color, false);
    canvas.beginDrawingForTypeWithDrawType(*toolTypeForPen(firstPen), 0);
    canvas.setDrawLineWidth(*lineWidthForSize(firstSize));
}

// ---- choosing

void ToolChoice::choose(const TesselConfig& config) {
    _type = config.type();
    switch (_type) {
        case 0:
            return chooseColor(config.color());
        case 1:
            if (config.hidingStyle()) return chooseHidingStyle(*config.hidingStyle());
            return chooseSize(config.size());
        case 2:
            return choosePen(config.pen());
        case 3:
            return chooseShape(config.shape());
        default:
            return;
    }
}

void ToolChoice::chooseColor(const gfx::ColorRef& color) {
    _pen.view()->setColor(color);
    _picture.canvas()->setDrawColorIsTranslucent(color, false);
    _color = color;
}

void ToolChoice::chooseSize(unsigned size) {
    _pen.view()->setSize(size);
    if (const auto width = lineWidthForSize(size)) _picture.canvas()->setDrawLineWidth(*width);
    _size = size;
}

void ToolChoice::chooseHidingStyle(std::uint64_t drawType) {
    _hidingStyle = drawType;
    _pen.view()->setHidingStyle(drawType);
    MDrawView& canvas = *_picture.canvas();
    canvas.beginDrawingForTypeWithDrawType(ToolType::Mosaic, drawType);
    canvas.setDrawTypeForType(drawType, ToolType::Mosaic);
}

void ToolChoice::choosePen(unsigned pen) {
    _pen.view()->setPen(pen);
    if (pen == EditorPenCrop) return;
    const Pen* const known = penNumbered(pen);
    const ToolClass* const kind = known ? ToolRegistry::current().kindOf(*known) : nullptr;
    if (kind) _picture.canvas()->beginDrawingWithClass(*kind, drawTypeOf(pen));
    constexpr std::int64_t none = -1;
    if (pen == EditorPenSelect) _picture.canvas()->beginDrawingForTypeWithDrawType(none, 0);
    _penNumber = pen;
    _pickers.showPen(pen, pen);
    offerFor(pen);
}

void ToolChoice::chooseShape(unsigned shape) {
    _shape = shape;
    MDrawView& canvas = *_picture.canvas();
    switch (shape) {
        case 0:
            canvas.beginDrawingForTypeWithDrawType(ToolType::Rectangle, 0);
            canvas.setDrawTypeForType(0, ToolType::Rectangle);
            return;
        case 1:
            canvas.beginDrawingForTypeWithDrawType(ToolType::Ellipse, 0);
            canvas.setDrawTypeForType(0, ToolType::Ellipse);
            return;
        case 2:
            return canvas.beginDrawingForTypeWithDrawType(ToolType::Line, 0);
        default:
            return;
    }
}

void ToolChoice::recall(const ToolMemory& memory) {
    MDrawView& canvas = *_picture.canvas();
    if (!memory.isOn() || canvas.hasSelectedTools()) return;
    const ToolMemory::Look look = memory.lookOf(_penNumber, canvas);
    if (look.color) chooseColor(look.color);
    if (look.lineWidth) {
        canvas.setDrawLineWidth(*look.lineWidth);
        const auto size = std::ranges::find(penSizes(), *look.lineWidth, &PenSize::lineWidth);
        if (size != penSizes().end()) {
            _size = static_cast<unsigned>(size - penSizes().begin());
            _pen.view()->setSize(_size);
        }
    }
    for (const auto& [name, value] : look.properties)
        canvas.setToolProperty(name, value);
    const bool isHiding = _offersHidingStyles && _penNumber == EditorPenMosaic;
    if (isHiding && look.drawType && hidingStyleOf(*look.drawType))
        chooseHidingStyle(*look.drawType);
    _pickers.show(_color, _size, _penNumber, _penNumber);
    offerFor(_penNumber);
}

// ---- ways to hide

void ToolChoice::setOffersHidingStyles(bool offers) {
    _offersHidingStyles = offers;
    if (_pickers.areMade() && _penNumber == EditorPenMosaic) choosePen(_penNumber);
}

void ToolChoice::offerFor(unsigned pen) {
    const bool isHiding = _offersHidingStyles && pen == EditorPenMosaic;
    _pen.view()->setHidingStyle(isHiding ? std::optional(_hidingStyle) : std::nullopt);
    if (isHiding) {
        _pickers.offerHidingStyles(_hidingStyle);
    } else {
        _pickers.offerSizes(_pen.view()->size());
    }
}

std::uint64_t ToolChoice::drawTypeOf(unsigned pen) const {
    if (_offersHidingStyles && pen == EditorPenMosaic) return _hidingStyle;
    const Pen* const known = penNumbered(pen);
    return known ? known->drawType : 0;
}

// ---- showing

void ToolChoice::showPen() {
    _pen.view()->setPen(_penNumber);
    _pickers.showPen(_penNumber, _penNumber);
    offerFor(_penNumber);
}

void ToolChoice::showTool(std::int64_t type, const gfx::ColorRef& color, double lineWidth) {
    TesselPenView& shown = *_pen.view();
    shown.setPen(penForToolType(type).value_or(_penNumber));
    shown.setColor(color ? color : _color);
    shown.setSize(sizeForLineWidth(lineWidth).value_or(_size));
    offerFor(shown.pen());
    _pickers.show(shown.color(), shown.size(), shown.pen(), _penNumber);
}

}  // namespace kalim
