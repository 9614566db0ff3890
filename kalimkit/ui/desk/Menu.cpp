#include "kalimkit/ui/desk/Menu.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "kalimkit/ui/desk/MenuRow.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double plateInset = 4;
constexpr double leastWidth = 140;

}  // namespace

// ---- making

Menu::Menu(std::vector<MenuItem> items) : _items(std::move(items)), _current(_items.size()) {}

Menu::~Menu() {
    if (_openCall && Environment::hasCurrent()) Environment::current().runLoop().cancel(_openCall);
}

std::shared_ptr<Menu> Menu::make(std::vector<MenuItem> items) {
    const std::shared_ptr<Menu> menu(new Menu(std::move(items)));
    menu->init({});
    return menu;
}

void Menu::init(const gfx::Rect& frame) {
    View::init(frame);
    setAccessibilityRole(AccessibilityRole::Menu);
    double width = leastWidth;
    for (std::size_t i = 0; i < _items.size(); ++i) {
        _rows.push_back(Row::make(*this, i));
        width = std::max(width, _rows.back()->fittingSize().width);
    }
    double y = 0;
    for (const auto& row : _rows) {
        const double height = row->fittingSize().height;
        row->setFrame({0, y, width, height});
        addSubview(row);
        y += height;
    }
    setFrame({0, 0, width, y});
}

// A narrow window may leave it less than its rows ask for.
void Menu::layoutSubviews() {
    for (const auto& row : _rows) {
        const gfx::Rect frame = row->frame();
        row->setFrame({frame.origin, {bounds().size.width, frame.size.height}});
    }
}

std::shared_ptr<Menu> Menu::show(View& anchor, std::vector<MenuItem> items) {
    if (items.empty() || !anchor.window()) return nullptr;
    const auto overlay = Overlay::in(*anchor.window());
    const bool isByKey = overlay->keyFocus().get() == &anchor;
    auto menu = make(std::move(items));
    menu->attach(Popover::show(anchor, menu, {.inset = plateInset, .isCentred = false}));
    if (isByKey) menu->moveTo(menu->_items.size(), false);
    return menu;
}

std::shared_ptr<Menu> Menu::showAt(Window& window, gfx::Point place, std::vector<MenuItem> items) {
    if (items.empty()) return nullptr;
    auto menu = make(std::move(items));
    menu->attach(
        Popover::showAt(window, {place, {}}, menu, {.inset = plateInset, .isCentred = false}));
    return menu;
}

void Menu::attach(const std::shared_ptr<Popover>& popover) {
    _popover = popover;
    // The popover holds the menu.
    popover->setKeyHandler(
        [this](std::string_view key, bool isRepeated) { return takeKey(key, isRepeated); });
}

bool Menu::isOpen() const {
    const auto popover = _popover.lock();
    return popover && popover->isOpen();
}

void Menu::close() {
    if (const auto popover = _popover.lock()) popover->close();
}

// ---- doing

void Menu::perform(std::size_t index) {
    if (!isChoosable(index) || !isOpen()) return;
    if (!_items[index].items.empty()) return openItems(index, false);
    const auto alive = shared_from_this();
    const auto run = _items[index].run;
    if (const auto overlay = window() ? Overlay::existingIn(*window()) : nullptr) {
        overlay->closeAll();
    }
    if (run) run();
}

bool Menu::isChoosable(std::size_t index) const {
    return index < _items.size() && _items[index].isEnabled && !_items[index].isSeparator;
}

// ---- pointer

void Menu::pointerIsOn(std::size_t index) {
    setCurrent(_items.size());
    RunLoop& loop = Environment::current().runLoop();
    if (_openCall) loop.cancel(std::exchange(_openCall, 0));
    const auto opened = _opened.lock();
    const bool isOpening = isChoosable(index) && !_items[index].items.empty();
    if (!isOpening && !(opened && opened->isOpen())) return;
    _openCall = loop.after(openDelay, [this, index, isOpening] {
        _openCall = 0;
        if (isOpening) {
            openItems(index, false);
        } else {
            closeItems();
        }
    });
}

// ---- what rows open

void Menu::openItems(std::size_t index, bool byKey) {
    const auto opened = _opened.lock();
    if (opened && opened->isOpen() && opened->_parentRow == index) return;
    closeItems();
    if (!isOpen()) return;
    auto menu = make(_items[index].items);
    menu->_parent = std::static_pointer_cast<Menu>(shared_from_this());
    menu->_parentRow = index;
    _opened = menu;
    menu->attach(
        Popover::show(*_rows[index], menu,
                      {.edge = PopoverEdge::Right, .inset = plateInset, .isCentred = false}));
    if (byKey) menu->moveTo(menu->_items.size(), false);
}

void Menu::closeItems() {
    if (const auto opened = _opened.lock()) opened->close();
    _opened.reset();
}

// ---- keys

bool Menu::takeKey(std::string_view key, bool isRepeated) {
    const auto alive = shared_from_this();
    if (key == "down" || key == "up") return moveTo(_current, key == "up");
    if (key == "home" || key == "end") return moveTo(_items.size(), key == "end");
    if (key == "tab" || key == "shift+tab") return moveTo(_current, key != "tab");
    if (key == "left") {
        if (_parent.lock()) close();
        return true;
    }
    if (key == "right") {
        if (isChoosable(_current) && !_items[_current].items.empty()) openItems(_current, true);
        return true;
    }
    if ((key == "enter" || key == "space") && !isRepeated && isChoosable(_current)) {
        if (_items[_current].items.empty()) {
            perform(_current);
        } else {
            openItems(_current, true);
        }
        return true;
    }
    return moveToLetter(key);
}

bool Menu::moveTo(std::size_t from, bool isBackwards) {
    const std::size_t count = _items.size();
    for (std::size_t step = 1; step <= count + 1; ++step) {
        // The place after the last one is none.
        const std::size_t next =
            (from + (isBackwards ? (count + 1) * step - step : step)) % (count + 1);
        if (!isChoosable(next)) continue;
        setCurrent(next);
        break;
    }
    return true;
}

bool Menu::moveToLetter(std::string_view letter) {
    if (letter.size() != 1) return false;
    const std::size_t count = _items.size();
    for (std::size_t step = 1; step <= count; ++step) {
        const std::size_t next = (_current + step) % count;
        if (!isChoosable(next) || _items[next].text.empty()) continue;
        const auto first = static_cast<unsigned char>(_items[next].text.front());
        if (std::tolower(first) != letter.front()) continue;
        setCurrent(next);
        return true;
    }
    return false;
}

void Menu::setCurrent(std::size_t index) {
    if (_current < _rows.size()) _rows[_current]->setCurrent(false);
    _current = index;
    if (_current < _rows.size()) _rows[_current]->setCurrent(true);
}

}  // namespace kalim::ui
