#include "kalimkit/editor/desk/DeskBar.h"

#include <utility>

#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void DeskBar::begin(const std::string& label) {
    View::init({});
    setClipsToBounds(true);
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(deskText(label));
    DeskBar::applyColors();
}

std::function<void()> DeskBar::whileThere(std::function<void()> step) const {
    return [weakSelf = weak_from_this(), step = std::move(step)] {
        if (const auto alive = weakSelf.lock()) step();
    };
}

void DeskBar::applyColors() {
    setBackgroundColor(gfx::makeColor(Palette::current().bar));
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
    context.fillRect(mirrored(line));
}

std::string deskText(std::string_view text) {
    return ui::Environment::current().localizedString(std::string(text));
}

std::string deskConfirmTitle(const std::string& title) {
    return title == deskText("发送") ? deskText("完成") : title;
}

std::shared_ptr<ui::DeskButton> makeDeskButton(const std::string& icon, const std::string& text,
                                               const std::string& key,
                                               std::function<void()> handler) {
    const auto button = ui::DeskButton::make(icon, icon.empty() ? text : std::string());
    button->setTip(text, key);
    button->setHandler(std::move(handler));
    return button;
}

std::shared_ptr<ui::DeskButton> makeDeskButton(const HostButton& button) {
    const auto made = ui::DeskButton::make({}, button.icon ? std::string() : button.title);
    if (button.icon) made->setImage(button.icon);
    made->setTip(button.title);
    // A copy: the action may take the button away.
    made->setHandler([action = button.action] {
        const auto run = action;
        if (run) run();
    });
    return made;
}

}  // namespace kalim
