#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/tool/ToolClass.h"

namespace kalim {

// The kinds of tools that there are in an environment, and the pens that draw with them: the
// library's and those that a host has added. The library's kit is registered as a host registers
// its own (Kit.h); nothing on the canvas or around it knows more of it than stands in its rows.
class KALIM_API ToolRegistry {
public:
    // The library's kinds.
    ToolRegistry();

    // That of the current environment; where none is installed, the library's.
    static const ToolRegistry& current();
    // Adds a kind to the current environment's, and with a pen what people choose it by, see
    // addPen(). The class outlives the environment. Best done before the first canvas. Answers with
    // what is wrong with it: no name or one that is taken, a tool type that is taken, nobody to
    // make its tools, or a pen that is refused; nothing was added then.
    static std::optional<std::string> add(const ToolClass& kind);
    static std::optional<std::string> add(const ToolClass& kind, const Pen& pen);

    // ---- looking for kinds; null for none
    std::span<const ToolClass* const> kinds() const { return _kinds; }
    const ToolClass* kindNamed(std::string_view name) const;
    const ToolClass* kindOfType(std::int64_t type) const;
    // What the pen draws with.
    const ToolClass* kindOf(const Pen& pen) const;
    // The pen that draws with exactly that kind; null where there is none.
    const Pen* penOf(const ToolClass& kind) const;

private:
    std::optional<std::string> problemOf(const ToolClass& kind) const;

    std::vector<const ToolClass*> _kinds;
    // Of pens whose kinds have no tool type, by the pen's number.
    std::vector<std::pair<unsigned, const ToolClass*>> _kindsOfPens;
};

}  // namespace kalim
