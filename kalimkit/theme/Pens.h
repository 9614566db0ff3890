#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/IconTable.h"

namespace kalim {

// Code speaks of these pens by their numbers.
enum EditorPen : unsigned {
    EditorPenMosaic = 0,
    EditorPenText = 1,
    EditorPenFreehand = 2,
    EditorPenRectangle = 3,
    EditorPenLine = 4,
    EditorPenCircle = 5,
    EditorPenArrow = 6,
    // No pen in use: it opens the crop editor.
    EditorPenCrop = 8,
    // It draws nothing: it picks what is there.
    EditorPenSelect = 30,
};

// What pickers, keys, the command line and pages know of a pen.
struct Pen {
    unsigned number = 0;
    // What the command line and pages choose it by; empty for a pen that they do not choose.
    std::string_view name = {};
    // The key that takes it, in upper case where shift has to be held; 0 for none.
    char key = 0;
    // Its icons are icon_tool_NAME in the picker and icon_pen_NAME_SIZE on the pen button.
    std::string_view icon;
    // What it is called for those who do not see it, in Chinese; `english` where no catalogue has
    // it, for pens of a host's.
    std::string_view text;
    std::string_view english = {};
    // What it draws, as the canvas numbers it (ToolType.h); nothing for a pen that draws nothing.
    std::optional<std::int64_t> toolType = {};
    // Where in its row the picker offers it, from 1 on; 0 where it does not.
    unsigned place = 0;
    // Its number among the shapes, for pens that are shapes as well.
    std::optional<unsigned> shape = {};
    // Whether selected tools of its type are shown as this pen.
    bool isShownForTools = true;
    // Whether the pen button shows one icon, icon_pen_NAME, in every size and colour.
    bool hasOneIcon = false;
    // Whether it shows the picker's icon, tinted, in every size.
    bool showsToolIcon = false;
    // The style that its tools begin with.
    std::uint64_t drawType = 0;
    // The colour that it begins with where the colours of pens are remembered, as "#RRGGBB"; empty
    // for a pen that goes on with that of the one before.
    std::string_view firstColor = {};
    // Of a host's pen: what `icon` names, drawn in one colour, which counts for its opacity alone.
    // It outlives the environment.
    const Icon* drawing = nullptr;

    // The key as hosts name it, "a" or "shift+a"; empty for none.
    std::string keyName() const;
};

// Those that the library brings along, and then those that were added in the current environment.
// In the order in which people are told their names.
KALIM_API std::span<const Pen> pens();
// Adds a pen to those of the current environment; ToolRegistry::add does it for a kind of tools.
// Its texts outlive the environment. It gets a number of its own, from firstAddedPen on. Answers
// with what is wrong with it: a name or a key that another pen has, no name, or too many pens.
KALIM_API std::optional<std::string> addPen(Pen pen);
inline constexpr unsigned firstAddedPen = 100;
// Null for a name that no pen has.
KALIM_API const Pen* penNamed(std::string_view name);
// Null for a number that is no pen.
KALIM_API const Pen* penNumbered(unsigned number);
// Null for a number that is no shape.
KALIM_API const Pen* penOfShape(unsigned shape);

// A width of pens; its number is its place among them, from thin to thick.
struct PenSize {
    // The width is points.
    int lineWidth;
    // The width of a selected tool that is shown as this size.
    double shownFor;
    // Its icons end so.
    std::string_view icon;
    std::string_view text;
};
KALIM_API std::span<const PenSize> penSizes();

// A way to hide that mosaic patches have; its number is its place among them, the first being that
// of a new editor.
struct HidingStyle {
    // As the canvas numbers it, see MosaicStyle.
    std::uint64_t drawType;
    // Its icon is icon_hide_NAME.
    std::string_view icon;
    std::string_view text;
};
KALIM_API std::span<const HidingStyle> hidingStyles();
// Null for a number that is no style.
KALIM_API const HidingStyle* hidingStyleOf(std::uint64_t drawType);

}  // namespace kalim
