#pragma once

#include <cstdint>

#include "kalimkit/editor/screen/EditorPickers.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/PenButton.h"
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
    // What a dot stands for. The crop pen is only shown: it is no tool to draw with.
    void choose(const TesselConfig& config);
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
    void choosePen(unsigned pen);
    void chooseShape(unsigned shape);

    EditorPicture& _picture;
    PenButton& _pen;
    EditorPickers& _pickers;
    unsigned _type = 0;
    unsigned _shape = 0;
    unsigned _penNumber = 0;
    unsigned _size = 0;
    gfx::ColorRef _color;
};

}  // namespace kalim
