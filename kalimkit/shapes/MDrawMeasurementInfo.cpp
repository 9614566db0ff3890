#include "kalimkit/shapes/MDrawMeasurementInfo.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <vector>

#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

constexpr double gap = 20;
constexpr double plateMargin = 10;
constexpr gfx::Color plateColor{1, 1, 1, 0.5};
constexpr gfx::Color textColor{0, 0, 0, 1};

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + 1);
    }
}

double lineHeight(const gfx::LineMetrics& metrics) {
    return metrics.ascent + metrics.descent + metrics.leading;
}

gfx::Size measured(const std::vector<std::string_view>& lines, const gfx::Font& font,
                   gfx::Device& device) {
    double width = 0;
    for (const std::string_view line : lines) {
        const std::vector<double> advances = device.advances(line, font);
        width = std::max(width, std::accumulate(advances.begin(), advances.end(), 0.0));
    }
    return {width, lineHeight(device.lineMetrics(font)) * static_cast<double>(lines.size())};
}

}  // namespace

std::unique_ptr<MDrawMeasurementInfo> MDrawMeasurementInfo::initWithTool(
    std::weak_ptr<const MDrawTool> tool) {
    return std::unique_ptr<MDrawMeasurementInfo>(new MDrawMeasurementInfo(std::move(tool)));
}

gfx::Rect MDrawMeasurementInfo::calculateTextFrameWithTextSizeForToolFrame(
    gfx::Size size, const gfx::Rect& toolFrame) {
    return {{toolFrame.midX() - size.width * 0.5, toolFrame.minY() - size.height - gap}, size};
}

void MDrawMeasurementInfo::drawContent(gfx::Context& context) {
    const std::shared_ptr<const MDrawTool> shape = tool();
    if (!shape) return;
    const std::string text = shape->measureText();
    if (text.empty()) return;
    gfx::Device& device = ui::Environment::current().device();
    const gfx::Font font;
    const std::vector<std::string_view> lines = linesOf(text);
    const gfx::Rect box =
        calculateTextFrameWithTextSizeForToolFrame(measured(lines, font, device), shape->frame());
    gfx::GraphicsStateGuard guard(context);
    context.setFillColor(plateColor);
    context.fillRect(box.inset(-plateMargin, -plateMargin));
    context.setFillColor(textColor);
    const gfx::LineMetrics metrics = device.lineMetrics(font);
    double baseline = box.minY() + metrics.ascent;
    for (const std::string_view line : lines) {
        context.drawText(line, {box.minX(), baseline}, font);
        baseline += lineHeight(metrics);
    }
}

}  // namespace kalim
