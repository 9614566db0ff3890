#include "kalimkit/shapes/ToolRegistry.h"

#include <algorithm>

#include "kalimkit/shapes/Kinds.h"
#include "kalimkit/shapes/Kit.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

ToolRegistry& registryOfEnvironment() {
    return ui::Environment::current().attachment<ToolRegistry>();
}

}  // namespace

ToolRegistry::ToolRegistry() : _kinds(kalim::kinds().begin(), kalim::kinds().end()) {
    for (const KitTool& tool : kit()) {
        const bool isNew = std::ranges::find(_kinds, tool.kind) == _kinds.end();
        if (isNew) _kinds.push_back(tool.kind);
        _kindsOfPens.emplace_back(tool.pen, tool.kind);
    }
}

const ToolRegistry& ToolRegistry::current() {
    static const ToolRegistry ofLibrary;
    return ui::Environment::hasCurrent() ? registryOfEnvironment() : ofLibrary;
}

// ---- adding

std::optional<std::string> ToolRegistry::problemOf(const ToolClass& kind) const {
    const std::string name(kind.name);
    if (name.empty()) return "a kind of tools needs a name";
    if (kindNamed(name)) return "there is a kind of tools " + name + " already";
    if (kind.row.toolType && kindOfType(*kind.row.toolType)) {
        return "the tool type " + std::to_string(*kind.row.toolType) + " of " + name +
               " is another kind's";
    }
    if (!kind.makeWithStartPoint) return "nobody can make a " + name;
    return std::nullopt;
}

std::optional<std::string> ToolRegistry::add(const ToolClass& kind) {
    ToolRegistry& registry = registryOfEnvironment();
    if (auto problem = registry.problemOf(kind)) return problem;
    registry._kinds.push_back(&kind);
    return std::nullopt;
}

std::optional<std::string> ToolRegistry::add(const ToolClass& kind, const Pen& pen) {
    ToolRegistry& registry = registryOfEnvironment();
    if (auto problem = registry.problemOf(kind)) return problem;
    Pen added = pen;
    added.toolType = kind.row.toolType;
    if (auto problem = addPen(added)) return problem;
    registry._kinds.push_back(&kind);
    registry._kindsOfPens.emplace_back(penNamed(pen.name)->number, &kind);
    return std::nullopt;
}

// ---- looking

const ToolClass* ToolRegistry::kindNamed(std::string_view name) const {
    const auto found = std::ranges::find(_kinds, name, &ToolClass::name);
    return found == _kinds.end() ? nullptr : *found;
}

const ToolClass* ToolRegistry::kindOfType(std::int64_t type) const {
    const auto found = std::ranges::find_if(
        _kinds, [type](const ToolClass* kind) { return kind->row.toolType == type; });
    return found == _kinds.end() ? nullptr : *found;
}

const ToolClass* ToolRegistry::kindOf(const Pen& pen) const {
    for (const auto& [number, kind] : _kindsOfPens) {
        if (number == pen.number) return kind;
    }
    return pen.toolType ? kindOfType(*pen.toolType) : nullptr;
}

const Pen* ToolRegistry::penOf(const ToolClass& kind) const {
    const auto all = pens();
    const auto found =
        std::ranges::find_if(all, [&](const Pen& pen) { return kindOf(pen) == &kind; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace kalim
