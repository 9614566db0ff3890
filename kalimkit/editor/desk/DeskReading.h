#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/tool/ToolProperty.h"

namespace kalim {

class TesselViewController;

// What the desk shows of an editor, read at one moment.
struct DeskReading {
    // The pen in hand, by its number, and what the style bar is about: the pen of what is selected,
    // or that one. Nothing for a selection of several kinds.
    unsigned penInHand = 0;
    std::optional<unsigned> subject;
    bool hasSelection = false;
    bool isTyping = false;
    bool isCropping = false;
    bool canUndo = false;
    bool canRedo = false;

    // ---- of the subject
    gfx::ColorRef color;
    // Points of the canvas.
    double lineWidth = 0;
    std::uint64_t drawType = 0;
    // It has a colour and a width to choose, or the ways to hide instead.
    bool hasColor = true;
    bool isHiding = false;
    // What else can be chosen of it; no value where what is selected differs.
    std::vector<std::pair<const ToolProperty*, std::optional<ToolPropertyValue>>> properties;

    // ---- of the picture; nothing without one
    // Pixels of the screen for one of the picture.
    double magnification = 0;
    gfx::Size pictureSize;
    std::optional<gfx::Point> pointer;
    // What is drawn or selected, such as "120 × 80" or "144, 45°"; empty for nothing.
    std::string measured;

    // The place is the pointer's, of the window.
    static DeskReading of(const TesselViewController& editor,
                          const std::optional<gfx::Point>& place);
};

}  // namespace kalim
