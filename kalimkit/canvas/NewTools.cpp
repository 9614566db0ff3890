#include "kalimkit/canvas/NewTools.h"

namespace kalim {

void NewTools::prepare(MDrawTool& tool) const {
    applyShared(tool);
    tool.setSelected(false);
    tool.setColor(color);
    tool.setDrawType(drawType);
    tool.setLineWidth(lineWidth);
    tool.setIsNewBuild(true);
    tool.finalize();
}

void NewTools::applyShared(MDrawTool& tool) const {
    tool.setRules(rules);
    tool.setCalibration(calibration);
    if (!unit.empty()) tool.setUnit(unit);
    tool.setShowMeasurement(showMeasurement);
}

}  // namespace kalim
