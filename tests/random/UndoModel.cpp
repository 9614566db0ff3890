#include "tests/random/UndoModel.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

#include "kalimkit/shapes/MDrawRect.h"

namespace kalim::test {

void UndoModel::record(const Entry& entry, const Look& look) {
    for (const ToolRef& tool : tools)
        cut(tool);
    for (const Entry& undone : redoStack) {
        for (const ToolRef& tool : undone.members)
            cut(tool);
    }
    redoStack.clear();
    for (const ToolRef& tool : entry.members) {
        const std::optional<Feature> seen = look(*tool);
        if (!seen) continue;
        History& history = histories[tool];
        history.states.push_back(*seen);
        history.place = history.place ? *history.place + 1 : 0;
    }
    undoStack.push_back(entry);
}

void UndoModel::cut(const ToolRef& tool) {
    History& history = histories[tool];
    if (history.place) history.states.resize(*history.place + 1);
}

void UndoModel::remove(const Entry& entry) {
    hasDeletedAfterUndo = hasDeletedAfterUndo || !redoStack.empty();
    for (const ToolRef& tool : entry.members)
        std::erase(tools, tool);
    undoStack.push_back(entry);
}

void UndoModel::forget(const ToolRef& tool) {
    const Entry alone{{tool}, false};
    std::erase(tools, tool);
    std::erase(undoStack, alone);
    std::erase(redoStack, alone);
}

bool UndoModel::undo() {
    if (undoStack.empty()) return false;
    const Entry entry = undoStack.back();
    for (const ToolRef& tool : entry.members) {
        History& history = histories[tool];
        if (!isOnCanvas(tool)) {
            tools.push_back(tool);
        } else if (history.place.value_or(0) > 0) {
            --*history.place;
        } else {
            std::erase(tools, tool);
        }
    }
    undoStack.pop_back();
    redoStack.push_back(entry);
    return true;
}

bool UndoModel::redo() {
    if (redoStack.empty()) return false;
    const Entry entry = redoStack.back();
    for (const ToolRef& tool : entry.members) {
        History& history = histories[tool];
        if (!isOnCanvas(tool)) {
            tools.push_back(tool);
        } else if (history.place && *history.place + 1 < history.states.size()) {
            ++*history.place;
        } else {
            std::erase(tools, tool);
        }
    }
    redoStack.pop_back();
    undoStack.push_back(entry);
    return true;
}

void UndoModel::reset() {
    *this = {};
}

const Feature* UndoModel::current(const ToolRef& tool) const {
    const auto found = histories.find(tool);
    if (found == histories.end() || !found->second.place) return nullptr;
    return &found->second.states[*found->second.place];
}

bool UndoModel::isOnCanvas(const ToolRef& tool) const {
    return std::ranges::find(tools, tool) != tools.end();
}

// ---- snapshots

namespace {

bool isClose(double a, double b) {
    return std::abs(a - b) <= 1e-6 * std::max({1.0, std::abs(a), std::abs(b)});
}

bool isSame(double a, double b) {
    return isClose(a, b);
}

bool isSame(gfx::Point a, gfx::Point b) {
    return isClose(a.x, b.x) && isClose(a.y, b.y);
}

bool isSame(const gfx::ColorRef& a, const gfx::ColorRef& b) {
    return a == b || (a && b && gfx::equalColors(a, b));
}

bool isSame(const PointLinesRef& a, const PointLinesRef& b) {
    return a == b || (a && b && *a == *b);
}

template <typename Value>
bool isSame(const Value& a, const Value& b) {
    return a == b;
}

bool isSameValue(const FeatureValue* expected, const FeatureValue* actual) {
    if (!expected || !actual) return expected == actual;
    if (expected->index() != actual->index()) return false;
    return std::visit(
        [&](const auto& value) {
            return isSame(value, std::get<std::decay_t<decltype(value)>>(*actual));
        },
        *expected);
}

gfx::Rect boxOf(const Feature& feature) {
    const auto* start = feature.get<gfx::Point>("MDrawLine-start");
    const auto* end = feature.get<gfx::Point>("MDrawLine-end");
    return start && end ? gfx::Rect::spanning(*start, *end) : gfx::Rect{};
}

bool isSameBox(const gfx::Rect& a, const gfx::Rect& b) {
    return isSame(a.origin, b.origin) && isSame(a.origin + gfx::Point{a.size.width, a.size.height},
                                                b.origin + gfx::Point{b.size.width, b.size.height});
}

}  // namespace

std::optional<std::string> differingKey(const MDrawTool& tool, const Feature& expected,
                                        const Feature& actual) {
    for (const char* key :
         {"MDrawTool-color", "MDrawTool-lineWidth", "MDrawTool-drawType", "MDrawTool-rotateAngle",
          "MDrawText-text", "MDrawText-fontSize", "MDrawFree-linepoint"}) {
        if (!isSameValue(expected.find(key), actual.find(key))) return key;
    }
    if (tool.toolClass().isKindOf(MDrawRect::Class())) {
        if (!isSameBox(boxOf(expected), boxOf(actual))) return "box";
        return std::nullopt;
    }
    for (const char* key : {"MDrawLine-start", "MDrawLine-end"}) {
        if (!isSameValue(expected.find(key), actual.find(key))) return key;
    }
    return std::nullopt;
}

}  // namespace kalim::test
