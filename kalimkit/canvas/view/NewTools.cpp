#include "kalimkit/canvas/view/NewTools.h"

namespace kalim {

void NewTools::prepare(MDrawTool& tool) const {
    tool.setSelected(false);
    tool.setColor(color);
    tool.setDrawType(drawType);
    tool.setLineWidth(lineWidth);
    tool.setIsNewBuild(true);
    applyMeasuring(tool);
    tool.finalize();
}

void NewTools::applyMeasuring(MDrawTool& tool) const {
    tool.setCalibration(calibration);
    if (!unit.empty()) tool.setUnit(unit);
    tool.setShowMeasurement(showMeasurement);
}

}  // namespace kalim
