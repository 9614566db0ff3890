#include "kalimkit/shapes/MDrawMeasurementInfo.h"

#include <utility>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double gap = 20;
constexpr double plateMargin = 10;
constexpr gfx::Size measuringBound{1024, 99999};
constexpr gfx::Color plateColor{1, 1, 1, 0.5};
constexpr gfx::Color textColor{0, 0, 0, 1};

}  // namespace

std::unique_ptr<MDrawMeasurementInfo> MDrawMeasurementInfo::init() {
    raise("InitException", "Should call initWithTool to create an instance.");
    return nullptr;
}

std::unique_ptr<MDrawMeasurementInfo> MDrawMeasurementInfo::initWithTool(
    std::weak_ptr<const MDrawTool> tool) {
    return std::unique_ptr<MDrawMeasurementInfo>(new MDrawMeasurementInfo(std::move(tool)));
}

gfx::Rect MDrawMeasurementInfo::calculateTextFrameWithTextSizeForToolFrame(
    gfx::Size size, const gfx::Rect& toolFrame) {
    return {{toolFrame.midX() - size.width * 0.5, toolFrame.minY() - size.height - gap}, size};
}

void MDrawMeasurementInfo::drawContent(gfx::Context& context) {
    const gfx::TextLayout* text = layout();
    if (!text) return;
    const gfx::GraphicsStateGuard guard(context);
    context.setFillColor(plateColor);
    context.fillRect(labelExtent());
    context.setFillColor(textColor);
    text->draw(context, textFrame(*text).origin);
}

gfx::Rect MDrawMeasurementInfo::labelExtent() const {
    const gfx::TextLayout* text = layout();
    return text ? textFrame(*text).inset(-plateMargin, -plateMargin) : gfx::Rect();
}

const gfx::TextLayout* MDrawMeasurementInfo::layout() const {
    const std::shared_ptr<const MDrawTool> shape = tool();
    std::string text = shape ? shape->measureText() : std::string();
    if (text.empty()) return nullptr;
    gfx::Device& device = ui::Environment::current().device();
    if (!_layout || _device != &device || _layout->text() != text) {
        _layout.emplace(device, std::move(text), gfx::Font(), measuringBound);
        _device = &device;
    }
    return &*_layout;
}

gfx::Rect MDrawMeasurementInfo::textFrame(const gfx::TextLayout& layout) const {
    const std::shared_ptr<const MDrawTool> shape = tool();
    return calculateTextFrameWithTextSizeForToolFrame(layout.size(),
                                                      shape ? shape->uprightFrame() : gfx::Rect());
}

}  // namespace kalim
