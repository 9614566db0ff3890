#include "kalimkit/editor/desk/DeskBar.h"

#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void DeskBar::begin(const std::string& label) {
    View::init({});
    setClipsToBounds(true);
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(ui::Environment::current().localizedString(label));
    setBackgroundColor(gfx::makeColor(Palette::current().bar));
}

void DeskBar::applyColors() {
    setBackgroundColor(gfx::makeColor(Palette::current().bar));
    for (const auto& [path, view] : views()) {
        if (const auto button = std::dynamic_pointer_cast<DeskButton>(view)) button->applyColors();
    }
    setNeedsDisplay();
}

void DeskBar::addNames(const std::string& shell, std::vector<EditorShell::Named>& names) const {
    for (auto& [path, view] : views()) {
        if (view) names.push_back({shell + "." + _name + "." + path, view});
    }
}

void DeskBar::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const gfx::Rect all = bounds();
    gfx::Rect line{all.minX(), all.maxY() - 1, all.size.width, 1};
    if (_edge == Edge::Top) line.origin.y = all.minY();
    if (_edge == Edge::Right) line = {all.maxX() - 1, all.minY(), 1, all.size.height};
    context.setFillColor(Palette::current().separator);
    context.fillRect(line);
}

}  // namespace kalim
