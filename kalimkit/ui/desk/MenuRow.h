#pragma once

#include <memory>
#include <string>

#include "kalimkit/ui/desk/Menu.h"

namespace kalim::ui {

// A row of a menu, or the line between two groups.
class Menu::Row : public DeskControl {
public:
    static std::shared_ptr<Row> make(Menu& menu, std::size_t index);
    // What it needs, points.
    gfx::Size fittingSize() const;

    // The keys' row looks as the pointer's.
    void setCurrent(bool isCurrent);
    void pointerEntered(gfx::Point p) override;
    bool canHaveKeyFocus() const override { return false; }
    std::string accessibilityLabel() const override { return item().text; }
    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override;
    bool isAccessibilitySelected() const override { return item().isChecked; }

protected:
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    Row(Menu& menu, std::size_t index) : _menu(menu), _index(index) {}
    void drawFocusOfKeys(gfx::Context& context, const Palette& palette) const;
    const MenuItem& item() const { return _menu._items[_index]; }

    // It owns its rows.
    Menu& _menu;
    std::size_t _index;
    bool _isCurrent = false;
};

}  // namespace kalim::ui
