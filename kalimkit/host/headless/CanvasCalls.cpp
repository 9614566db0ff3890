#include "kalimkit/host/headless/CanvasCalls.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"

namespace kalim {

namespace {

using Arguments = JsonValue::Array;

struct Operation {
    std::string_view name;
    CallOutcome (*call)(std::string_view name, MDrawView& canvas, const Arguments& arguments);
};

std::string position(std::string_view name, std::size_t index) {
    return "argument " + std::to_string(index + 1) + " of " + std::string(name);
}

template <typename Kind>
Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&, Kind& out) {
    return readAs(value, what, out);
}

// Tools are named by their places in the list.
Problem readArgument(const JsonValue& value, const std::string& what, MDrawView& canvas,
                     ToolList& out) {
    std::vector<std::uint64_t> indexes;
    if (Problem problem = readList(value, what, "index", indexes)) return problem;
    for (const std::uint64_t index : indexes) {
        if (index >= canvas.tools().size()) {
            return what + " names tool " + std::to_string(index) + ", but there are " +
                   std::to_string(canvas.tools().size()) + ", counted from 0";
        }
        out.push_back(canvas.tools()[index]);
    }
    return std::nullopt;
}

// A property's value is a number, a text, or a switch.
Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&,
                     ToolPropertyValue& out) {
    if (const double* const number = value.number()) {
        out = *number;
    } else if (const std::string* const words = value.string()) {
        out = *words;
    } else {
        return wrongValue(what, "a number or a text", value);
    }
    return std::nullopt;
}

// Reads a list of pairs: a text's colour and that of its outline.
Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&,
                     MDrawView::ColorPairs& out) {
    if (!value.array()) return wrongValue(what, "a list of pairs of colours", value);
    for (const JsonValue& pair : *value.array()) {
        std::vector<gfx::ColorRef> colors;
        if (Problem problem = readList(pair, "a pair of " + what, "colour", colors)) return problem;
        if (colors.size() != 2) return wrongValue("a pair of " + what, "two colours", pair);
        out.emplace_back(colors[0], colors[1]);
    }
    return std::nullopt;
}

// Reads one of a few choices by its name.
template <typename Choice, std::size_t count>
Problem readChoice(const JsonValue& value, const std::string& what,
                   const std::array<std::string_view, count>& names, Choice& out) {
    std::string name;
    if (Problem problem = readAs(value, what, name)) return problem;
    const auto found = std::ranges::find(names, std::string_view(name));
    if (found == names.end()) {
        return what + " is not " + shownName(name) + suggestion(name, {names.begin(), names.end()});
    }
    out = static_cast<Choice>(found - names.begin());
    return std::nullopt;
}

Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&, Alignment& out) {
    constexpr std::array<std::string_view, 6> names{"left", "center", "right",
                                                    "top",  "middle", "bottom"};
    return readChoice(value, what, names, out);
}

Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&, Direction& out) {
    constexpr std::array<std::string_view, 2> names{"horizontally", "vertically"};
    return readChoice(value, what, names, out);
}

Problem readArgument(const JsonValue& value, const std::string& what, MDrawView&,
                     OrderChange& out) {
    constexpr std::array<std::string_view, 4> names{"forward", "backward", "toFront", "toBack"};
    return readChoice(value, what, names, out);
}

template <typename Value>
JsonValue resultOf(const Value& value) {
    if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>) {
        return value;
    } else {
        return toJson(value);
    }
}

JsonValue resultOf(const ToolClass* toolClass) {
    return toolClass ? JsonValue(std::string(toolClass->name)) : JsonValue();
}

JsonValue resultOf(const std::optional<ToolPropertyValue>& value) {
    if (!value) return {};
    return std::visit([](const auto& chosen) { return JsonValue(chosen); }, *value);
}

// The canvas is what an operation is called of, or a part of it.
template <typename Owner>
Owner& subject(MDrawView& canvas) {
    if constexpr (std::is_same_v<Owner, CanvasArrangement>) {
        return *canvas.arrangement();
    } else {
        return canvas;
    }
}

// Reads the arguments into values of the kinds that the operation takes, calls it, and turns what
// it returns into JSON.
template <auto operation, typename Owner, typename Result, typename... Kinds>
CallOutcome callWith(std::string_view name, MDrawView& canvas, const Arguments& arguments) {
    constexpr std::size_t wanted = sizeof...(Kinds);
    if (arguments.size() != wanted) {
        return {std::string(name) + " takes " + std::to_string(wanted) +
                    (wanted == 1 ? " argument, not " : " arguments, not ") +
                    std::to_string(arguments.size()),
                {}};
    }
    std::tuple<std::decay_t<Kinds>...> values;
    Problem problem;
    std::size_t index = 0;
    const auto read = [&](auto& value) {
        if (!problem) {
            problem = readArgument(arguments[index], position(name, index), canvas, value);
        }
        ++index;
    };
    std::apply([&](auto&... value) { (read(value), ...); }, values);
    if (problem) return {problem, {}};
    const auto call = [&](auto&... value) -> Result {
        return (subject<Owner>(canvas).*operation)(std::move(value)...);
    };
    if constexpr (std::is_void_v<Result>) {
        std::apply(call, values);
        return {};
    } else {
        return {{}, resultOf(std::apply(call, values))};
    }
}

// Of the canvas or of a class that it is derived from.
template <auto operation, typename Owner, typename Result, typename... Kinds>
constexpr Operation bind(std::string_view name, Result (Owner::*)(Kinds...)) {
    return {name, &callWith<operation, Owner, Result, Kinds...>};
}

template <auto operation, typename Owner, typename Result, typename... Kinds>
constexpr Operation bind(std::string_view name, Result (Owner::*)(Kinds...) const) {
    return {name, &callWith<operation, Owner, Result, Kinds...>};
}

template <auto operation>
constexpr Operation named(std::string_view name) {
    return bind<operation>(name, operation);
}

constexpr Operation operations[] = {
    // ---- the picture
    named<&MDrawView::bgImgRect>("bgImgRect"),
    named<&MDrawView::ctxRect>("ctxRect"),
    named<&MDrawView::canvasBasis>("canvasBasis"),
    named<&MDrawView::setCanvasBasis>("setCanvasBasis"),
    named<&MDrawView::layoutMargin>("layoutMargin"),
    named<&MDrawView::setLayoutMargin>("setLayoutMargin"),
    named<&MDrawView::clipsToPicture>("clipsToPicture"),
    named<&MDrawView::setClipsToPicture>("setClipsToPicture"),
    named<&MDrawView::pictureCut>("pictureCut"),
    named<&MDrawView::setPictureCut>("setPictureCut"),
    named<&MDrawView::resetPictureCut>("resetPictureCut"),
    named<&MDrawView::isDirty>("isDirty"),
    named<&MDrawView::defualtBackgroundColor>("defualtBackgroundColor"),
    named<&MDrawView::setDefualtBackgroundColor>("setDefualtBackgroundColor"),
    // ---- what new tools are
    named<&MDrawView::beginDrawingForTypeWithDrawType>("beginDrawingForTypeWithDrawType"),
    named<&MDrawView::beginDrawingWithClassNamed>("beginDrawingWithClass"),
    named<&MDrawView::drawToolClass>("drawToolClass"),
    named<&MDrawView::placesPoints>("placesPoints"),
    named<&MDrawView::setPlacesPoints>("setPlacesPoints"),
    named<&MDrawView::isPlacingPoints>("isPlacingPoints"),
    named<&MDrawView::completePoints>("completePoints"),
    named<&MDrawView::dropPoints>("dropPoints"),
    named<&MDrawView::setDrawTypeForType>("setDrawTypeForType"),
    named<&MDrawView::drawType>("drawType"),
    named<&MDrawView::setDrawColorIsTranslucent>("setDrawColorIsTranslucent"),
    named<&MDrawView::color>("color"),
    named<&MDrawView::setDrawLineWidth>("setDrawLineWidth"),
    named<&MDrawView::lineWidth>("lineWidth"),
    named<&MDrawView::setToolProperty>("setToolProperty"),
    named<&MDrawView::toolProperty>("toolProperty"),
    named<&MDrawView::setTextMaskColorsParForTextColors>("setTextMaskColorsParForTextColors"),
    // ---- measuring
    named<&MDrawView::setCalibration>("setCalibration"),
    named<&MDrawView::setUnit>("setUnit"),
    named<&MDrawView::setShowMeasurement>("setShowMeasurement"),
    // ---- tools and selection
    named<&MDrawView::hasTools>("hasTools"),
    named<&MDrawView::hasDrawed>("hasDrawed"),
    named<&MDrawView::selectTools>("selectTools"),
    named<&MDrawView::selectNone>("selectNone"),
    named<&MDrawView::hasSelectedTools>("hasSelectedTools"),
    named<&MDrawView::deleteSelectedTools>("deleteSelectedTools"),
    named<&MDrawView::clearTools>("clearTools"),
    named<&MDrawView::removeInvaildTools>("removeInvaildTools"),
    named<&MDrawView::finalizeCurrentDrawing>("finalizeCurrentDrawing"),
    named<&MDrawView::finishEditText>("finishEditText"),
    named<&MDrawView::editSelectedText>("editSelectedText"),
    // ---- arranging
    named<&MDrawView::fineHandles>("fineHandles"),
    named<&MDrawView::setFineHandles>("setFineHandles"),
    named<&MDrawView::snaps>("snaps"),
    named<&MDrawView::setSnaps>("setSnaps"),
    named<&MDrawView::cancelGesture>("cancelGesture"),
    named<&CanvasArrangement::selectAll>("selectAll"),
    named<&CanvasArrangement::selectWithin>("selectWithin"),
    named<&CanvasArrangement::nudge>("nudge"),
    named<&CanvasArrangement::align>("align"),
    named<&CanvasArrangement::distribute>("distribute"),
    named<&CanvasArrangement::changeOrder>("changeOrder"),
    named<&CanvasArrangement::group>("group"),
    named<&CanvasArrangement::ungroup>("ungroup"),
    named<&CanvasArrangement::lock>("lock"),
    named<&CanvasArrangement::unlock>("unlock"),
    named<&CanvasArrangement::duplicate>("duplicate"),
    named<&CanvasArrangement::copiedShapes>("copiedShapes"),
    named<&CanvasArrangement::cutShapes>("cutShapes"),
    named<&CanvasArrangement::pasteShapes>("pasteShapes"),
    named<&CanvasArrangement::pasteShapesAt>("pasteShapesAt"),
    // ---- undo
    named<&MDrawView::undo>("undo"),
    named<&MDrawView::redo>("redo"),
    named<&MDrawView::canUndo>("canUndo"),
    named<&MDrawView::canRedo>("canRedo"),
    // ---- zoom and gestures
    named<&MDrawView::invertViewPoint>("invertViewPoint"),
    named<&MDrawView::getScale>("getScale"),
    named<&MDrawView::contextScale>("contextScale"),
    named<&MDrawView::defaultMinScale>("defaultMinScale"),
    named<&MDrawView::largestScale>("largestScale"),
    named<&MDrawView::setLargestMagnification>("setLargestMagnification"),
    named<&MDrawView::zoomToFit>("zoomToFit"),
    named<&MDrawView::zoomToPixels>("zoomToPixels"),
    named<&MDrawView::zoomBy>("zoomBy"),
    named<&MDrawView::autoScaleWhenCtxEnlarged>("autoScaleWhenCtxEnlarged"),
    named<&MDrawView::invalidateLayers>("invalidateLayers"),
    named<&MDrawView::setFScal>("setFScal"),
    named<&MDrawView::enableGesture>("enableGesture"),
    named<&MDrawView::setEnableGesture>("setEnableGesture"),
};

std::string unknownOperation(const std::string& name) {
    std::vector<std::string_view> names;
    for (const Operation& operation : operations)
        names.push_back(operation.name);
    return "the canvas has no operation " + shownName(name) + suggestion(name, names);
}

}  // namespace

CallOutcome callCanvas(MDrawView& canvas, const std::string& name,
                       const JsonValue::Array& arguments) {
    for (const Operation& operation : operations) {
        if (operation.name == name) return operation.call(name, canvas, arguments);
    }
    return {unknownOperation(name), {}};
}

}  // namespace kalim
