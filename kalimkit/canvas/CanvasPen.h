#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/ToolClass.h"

namespace kalim {

class CanvasFinger;
class CanvasFreehand;
class CanvasHome;
class CanvasJournal;
class CanvasRestyling;
class CanvasScreen;
class CanvasSelection;
class CanvasTools;
class CanvasTyping;

// What is chosen for new tools on a canvas, and what of the rest gets it, too.
class CanvasPen {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasScreen& screen;
        CanvasSelection& selection;
        CanvasTyping& typing;
        CanvasFreehand& freehand;
        CanvasFinger& finger;
        CanvasJournal& journal;
        CanvasRestyling& restyling;
    };
    explicit CanvasPen(const Canvas& canvas) : _canvas(canvas) {}

    // See the operations of MDrawView. A null class draws nothing.
    void setForgiving(bool forgiving);
    void setFineHandles(bool fine);
    void choose(const ToolClass* toolClass, std::uint64_t drawType);
    void setDrawType(std::uint64_t drawType, const ToolClass* toolClass);
    void setColor(gfx::ColorRef color);
    void setLineWidth(double width);
    bool setProperty(const std::string& name, const ToolPropertyValue& value);
    bool setDetail(const std::string& name, const std::string& text);
    std::optional<ToolPropertyValue> property(const std::string& name) const;
    std::vector<const ToolProperty*> properties() const;
    void setCalibration(double calibration);
    void setUnit(std::string unit);
    void setShowMeasurement(bool show);

private:
    ToolRef shareShade(const ToolRef& changed, const std::string& name,
                       const ToolPropertyValue& value) const;
    void measuringChanged();

    Canvas _canvas;
};

}  // namespace kalim
