#pragma once

#include <cstdint>

#include "kalimkit/editor/screen/EditorPickers.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/PenButton.h"
#include "kalimkit/editor/screen/ToolMemory.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/theme/TesselConfig.h"

namespace kalim {

// The tool that the user has: what is chosen goes to the canvas, and is shown by the pen button and
// the pickers.
class ToolChoice {
public:
    ToolChoice(EditorPicture& picture, PenButton& pen, EditorPickers& pickers)
        : _picture(picture), _pen(pen), _pickers(pickers) {}

    // What a new editor begins with.
    void begin();
    // See TesselViewController::setOffersHidingStyles.
    bool offersHidingStyles() const { return _offersHidingStyles; }
    void setOffersHidingStyles(bool offers);
    // What a dot stands for. The crop pen is only shown: it is no tool to draw with.
    void choose(const TesselConfig& config);
    // The same for a pen, without a dot.
    void take(unsigned pen) { choosePen(pen); }
    // The look that the pen had when it was used last; of a selection nothing changes.
    void recall(const ToolMemory& memory);
    // The pen that one draws with is shown again.
    void showPen();
    // Shows what a tool of the canvas has, as far as it is something that can be chosen.
    void showTool(std::int64_t type, const gfx::ColorRef& color, double lineWidth);

    // ---- readings, see EditorReading
    unsigned type() const { return _type; }
    unsigned shape() const { return _shape; }
    unsigned pen() const { return _penNumber; }
    unsigned size() const { return _size; }
    const gfx::ColorRef& color() const { return _color; }

private:
    void chooseColor(const gfx::ColorRef& color);
    void chooseSize(unsigned size);
    void chooseHidingStyle(std::uint64_t drawType);
    // The dots of sizes stand for what this pen has to choose.
    void offerFor(unsigned pen);
    std::uint64_t drawTypeOf(unsigned pen) const;
    void choosePen(unsigned pen);
    void chooseShape(unsigned shape);

    EditorPicture& _picture;
    PenButton& _pen;
    EditorPickers& _pickers;
    unsigned _type = 0;
    unsigned _shape = 0;
    unsigned _penNumber = 0;
    unsigned _size = 0;
    bool _offersHidingStyles = false;
    // What the next mosaic patches show where the ways to hide are offered.
    std::uint64_t _hidingStyle = hidingStyles().front().drawType;
    gfx::ColorRef _color;
};

}  // namespace kalim
