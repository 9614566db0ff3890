#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/tool/MoveDirection.h"
#include "kalimkit/tool/ToolDetail.h"
#include "kalimkit/tool/ToolProperty.h"
#include "kalimkit/ui/view/Accessibility.h"

namespace kalim {

class MDrawTool;

// What a finished tool lies on.
enum class ToolLayer {
    // Among all that is drawn, in the order in which it was made.
    Items,
    // On the picture itself, below all items: the tool draws by MDrawTool::drawOnGround, in its
    // frame and nowhere beside the picture.
    Ground,
    // Between the ground and the items: all such tools of a canvas together make one shade, which
    // leaves their areas light, see MDrawTool::area.
    Shade,
};

// Whose fingers pick a finished tool.
enum class ToolPicking { Always, UnderForgivingRules };

// When a tool is made that is begun by touch.
enum class ToolBeginning {
    // As soon as the finger has moved.
    FirstMove,
    // Where the finger lands, whether it moves or not.
    TouchDown,
    // Point by point. The canvas leaves that to its host, who adds the tool once it is made.
    Taps,
};

// Who records the step once a new tool is there.
enum class ToolRecorder {
    // The canvas, when the finger lifts.
    Touch,
    // The tool, when its words have been typed. Such kinds are derived from MDrawText.
    Typing,
    // MDrawFreeLineHelper, when no further stroke joins. Such kinds are derived from MDrawFreeline.
    Strokes,
};

// What the two points of a tool span, for keys that hold it to something while it is drawn or
// resized, and for where its handles are.
enum class ToolSpan {
    // Nothing that keys know of; its handles are its own.
    Free,
    // A line from one to the other: the keys turn it by steps.
    Line,
    // A box: the keys make it a square, or keep its proportions.
    Box,
};

// What a kind of tools is, as far as it differs from the kind that it is derived from.
struct ToolRow {
    // What it is called for those who do not see it, with a gap for its colour: "{color}箭头", a
    // text that hosts may have in other languages.
    const char* label = nullptr;
    std::optional<ui::AccessibilityRole> role = {};
    std::optional<ToolLayer> layer = {};
    std::optional<ToolPicking> picking = {};
    std::optional<ToolBeginning> beginning = {};
    std::optional<ToolRecorder> recorder = {};
    std::optional<ToolSpan> span = {};
    // Its content, but for shadows, keeps to its frame.
    std::optional<bool> keepsToFrame = {};
    // What it looks like depends on what lies under it, as with a marker pen: it has to be drawn
    // over all of that, and cannot be kept by itself.
    std::optional<bool> blends = {};
    // What moving a group of several means to it; None where it keeps what it meant before.
    std::optional<MoveDirection> moveInGroup = {};
    // The number that the canvas's interface knows it by. It is no other kind's, and is not
    // inherited.
    std::optional<std::int64_t> toolType = {};
    // What makes a tool of the kind besides what all have: the details that MDrawTool::keptDetails
    // names and takeDetail takes. The list outlives the class.
    std::span<const ToolDetailRule> details = {};
    // What people choose of its look, in the order in which bars offer it; all of them, those of
    // the base too. The list outlives the class.
    std::optional<std::span<const ToolProperty>> properties = {};
    // The canvas counts its tools by MDrawTool::setCount.
    std::optional<bool> isCounted = {};
};

// A kind of tools at run time: its name, its base, how one is made, and what it is. There is one
// object per class, compared by address, and it outlives every canvas.
struct KALIM_API ToolClass {
    std::string_view name;
    const ToolClass* base = nullptr;
    // Makes an initialised tool at a canvas point; null for classes that nobody makes by points.
    std::shared_ptr<MDrawTool> (*makeWithStartPoint)(gfx::Point start) = nullptr;
    ToolRow row = {};

    // Holds for the class itself and for everything derived from it.
    bool isKindOf(const ToolClass& other) const {
        for (const ToolClass* current = this; current; current = current->base) {
            if (current == &other) return true;
        }
        return false;
    }

    // ---- the row, where it says nothing that of the base
    const char* label() const {
        for (const ToolClass* current = this; current; current = current->base) {
            if (current->row.label) return current->row.label;
        }
        return "{color}图形";
    }
    ui::AccessibilityRole role() const {
        return said(&ToolRow::role, ui::AccessibilityRole::Image);
    }
    ToolLayer layer() const { return said(&ToolRow::layer, ToolLayer::Items); }
    ToolPicking picking() const { return said(&ToolRow::picking, ToolPicking::Always); }
    ToolBeginning beginning() const { return said(&ToolRow::beginning, ToolBeginning::FirstMove); }
    ToolRecorder recorder() const { return said(&ToolRow::recorder, ToolRecorder::Touch); }
    ToolSpan span() const { return said(&ToolRow::span, ToolSpan::Free); }
    bool keepsToFrame() const { return said(&ToolRow::keepsToFrame, false); }
    bool blends() const { return said(&ToolRow::blends, false); }
    MoveDirection moveInGroup() const { return said(&ToolRow::moveInGroup, MoveDirection::None); }
    std::span<const ToolDetailRule> details() const {
        for (const ToolClass* current = this; current; current = current->base) {
            if (!current->row.details.empty()) return current->row.details;
        }
        return {};
    }
    std::span<const ToolProperty> properties() const {
        return said(&ToolRow::properties, std::span<const ToolProperty>());
    }
    bool isCounted() const { return said(&ToolRow::isCounted, false); }
    // Null for a name that is none of them.
    const ToolProperty* propertyNamed(std::string_view wanted) const {
        for (const ToolProperty& property : properties()) {
            if (property.name == wanted) return &property;
        }
        return nullptr;
    }

private:
    template <typename Value>
    Value said(std::optional<Value> ToolRow::*field, Value otherwise) const {
        for (const ToolClass* current = this; current; current = current->base) {
            if (current->row.*field) return *(current->row.*field);
        }
        return otherwise;
    }
};

}  // namespace kalim
