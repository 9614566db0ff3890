#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/desk/DeskControl.h"
#include "kalimkit/ui/desk/Popover.h"

namespace kalim::ui {

// A row of a menu.
struct MenuItem {
    std::string text;
    // What it does; it runs once the menu has gone. Nothing for one that only opens others.
    std::function<void()> run = {};
    // The key that does the same, by its name in EditorKeys, and the icon of drawDeskIcon(); either
    // may be empty.
    std::string key = {};
    std::string icon = {};
    bool isEnabled = true;
    bool isChecked = false;
    // A line between groups; nothing else of it counts.
    bool isSeparator = false;
    // What it opens beside it, instead of doing something.
    std::vector<MenuItem> items = {};

    static MenuItem separator() { return {.text = {}, .isSeparator = true}; }
};

// A list of what can be done. Up and down, home and end choose a row, a letter the next one that
// begins with it, enter and space do it, right and left open and close what a row opens, escape
// closes the menu. A pointer that rests on a row opens what that opens.
class KALIM_API Menu : public View {
public:
    // Seconds that the pointer has to rest for that.
    static constexpr double openDelay = 0.2;

    // Below a view, or at a place in window points as a context menu; null and nothing happens
    // without items or where the view is in no window.
    static std::shared_ptr<Menu> show(View& anchor, std::vector<MenuItem> items);
    static std::shared_ptr<Menu> showAt(Window& window, gfx::Point place,
                                        std::vector<MenuItem> items);
    ~Menu() override;

    const std::vector<MenuItem>& items() const { return _items; }
    bool isOpen() const;
    void close();
    // The row that the keys have come to; the number of items for none.
    std::size_t current() const { return _current; }
    // What a tap on a row does: closes all menus, then runs it; or opens what it opens. Nothing for
    // a row that is not enabled.
    void perform(std::size_t index);

protected:
    explicit Menu(std::vector<MenuItem> items);
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    class Row;

    static std::shared_ptr<Menu> make(std::vector<MenuItem> items);
    void attach(const std::shared_ptr<Popover>& popover);
    bool takeKey(std::string_view key, bool isRepeated);
    bool moveTo(std::size_t from, bool isBackwards);
    bool moveToLetter(std::string_view letter);
    void setCurrent(std::size_t index);
    bool isChoosable(std::size_t index) const;
    void pointerIsOn(std::size_t index);
    void openItems(std::size_t index, bool byKey);
    void closeItems();

    std::vector<MenuItem> _items;
    // One for each item.
    std::vector<std::shared_ptr<Row>> _rows;
    std::size_t _current = 0;
    std::weak_ptr<Popover> _popover;
    // The one that a row of this one has opened, and that which has opened this one.
    std::weak_ptr<Menu> _opened;
    std::weak_ptr<Menu> _parent;
    // The row of that which has.
    std::size_t _parentRow = 0;
    // The delayed call that opens what the row under the pointer opens; 0 for none.
    std::uint64_t _openCall = 0;
};

}  // namespace kalim::ui
