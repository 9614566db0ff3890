#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/outline/StrokeRecognition.h"

namespace kalim {

namespace {

const ToolClass& kindOf(RecognizedStroke::Kind kind) {
    switch (kind) {
        case RecognizedStroke::Kind::Arrow:
            return MDrawArrow::Class();
        case RecognizedStroke::Kind::Ellipse:
            return MDrawEllipse::Class();
        case RecognizedStroke::Kind::Rectangle:
            return MDrawRect::Class();
        case RecognizedStroke::Kind::Line:
            break;
    }
    return MDrawLine::Class();
}

}  // namespace

ToolRef MDrawFreeline::straightened() const {
    if (linePoints().size() != 1) return nullptr;
    const auto shape = recognizedStroke(linePoints().front());
    if (!shape) return nullptr;
    ToolRef tool = kindOf(shape->kind).makeWithStartPoint(shape->start);
    tool->setEndPoint(shape->end);
    return tool;
}

}  // namespace kalim
