#include "kalimkit/canvas/CanvasKeys.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <numbers>
#include <string>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasByKeys.h"
#include "kalimkit/canvas/CanvasPointer.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/environment/LateCode.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// Of a key that zooms in.
constexpr double zoomStep = 1.25;

// Tells whether a key types something into a text.
bool isTyping(std::string_view key) {
    const std::string_view last = key.substr(key.rfind('+') + 1);
    const bool isPlain = last.size() == key.size() || key == "shift+" + std::string(last);
    return isPlain && (last.size() == 1 || last == "space" || last == "plus");
}

// Where plus and minus lie, and whether they need another key, differs between keyboards.
std::string_view commandName(std::string_view key) {
    for (const std::string_view plus :
         {"=", "shift+plus", "shift+=", "ctrl+plus", "ctrl+=", "ctrl+shift+plus", "ctrl+shift+="}) {
        if (key == plus) return "plus";
    }
    return key == "ctrl+-" ? "-" : key;
}

// ---- commands; whether there was something to do

// What is under way has no step yet: it is what is meant.
bool undo(MDrawView& canvas, CanvasPointer&) {
    if (canvas.forgiving() && !canvas.isPlacingPoints() && canvas.cancelGesture()) return true;
    return canvas.canUndo() && canvas.undo();
}

bool redo(MDrawView& canvas, CanvasPointer&) {
    return canvas.canRedo() && canvas.redo();
}

bool deleteSelection(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.hasSelectedTools()) return false;
    canvas.deleteSelectedTools();
    return true;
}

bool escape(MDrawView& canvas, CanvasPointer&) {
    if (canvas.dropPoints() || canvas.cancelGesture()) return true;
    if (canvas.curEdittingTextTool()) {
        canvas.finishEditText();
        return true;
    }
    if (!canvas.hasSelectedTools()) return false;
    canvas.selectNone();
    return true;
}

// Who has come to a shape by keys means that one, and does not want to be done with the whole.
bool enter(MDrawView& canvas, CanvasPointer&) {
    if (canvas.completePoints() || canvas.editSelectedText()) return true;
    const auto& selected = canvas.handingTools();
    const auto keys = canvas.byKeys();
    return selected && !selected.owner_before(keys->chosen()) &&
           !keys->chosen().owner_before(selected);
}

bool keep(const std::string& shapes) {
    if (!shapes.empty()) ui::Environment::current().setClipboardText(shapes);
    return !shapes.empty();
}

bool copy(MDrawView& canvas, CanvasPointer&) {
    return keep(canvas.arrangement()->copiedShapes());
}

bool cut(MDrawView& canvas, CanvasPointer&) {
    return keep(canvas.arrangement()->cutShapes());
}

bool paste(MDrawView& canvas, CanvasPointer&) {
    return canvas.arrangement()->pasteShapes(ui::Environment::current().clipboardText());
}

bool lockOrUnlock(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.hasSelectedTools()) return false;
    return canvas.arrangement()->lock() || canvas.arrangement()->unlock();
}

bool unlockAll(MDrawView& canvas, CanvasPointer&) {
    canvas.selectNone();
    return canvas.arrangement()->unlock();
}

// What only people without a pointer need may come later than the rest.
bool byKeys(MDrawView& canvas, bool (*run)(CanvasByKeys& keys)) {
    const auto& code = ui::Environment::current().attachment<ui::LateCode>();
    const auto keys = canvas.byKeys();
    if (!code.isThere([weak = std::weak_ptr(keys), run] {
            if (const auto there = weak.lock()) run(*there);
        }))
        return true;
    return run(*keys);
}

template <int x, int y>
bool nudge(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.hasSelectedTools()) return false;
    return byKeys(canvas, [](CanvasByKeys& keys) { return keys.nudge({x, y}); });
}
template <int x, int y>
bool resize(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.hasSelectedTools()) return false;
    return byKeys(canvas, [](CanvasByKeys& keys) { return keys.resize({x, y}); });
}
template <int degrees>
bool turn(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.hasSelectedTools()) return false;
    constexpr double angle = degrees * std::numbers::pi / 180;
    return byKeys(canvas, [](CanvasByKeys& keys) { return keys.turn(angle); });
}
template <bool forwards>
bool selectNext(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.forgiving() || !canvas.hasTools()) return false;
    return byKeys(canvas, [](CanvasByKeys& keys) { return keys.selectNext(forwards); });
}
bool make(MDrawView& canvas, CanvasPointer&) {
    if (!canvas.forgiving() || !canvas.drawToolClass()) return false;
    return byKeys(canvas, [](CanvasByKeys& keys) { return keys.make(); });
}
template <Alignment alignment>
bool align(MDrawView& canvas, CanvasPointer&) {
    return canvas.arrangement()->align(alignment);
}
template <Direction direction>
bool distribute(MDrawView& canvas, CanvasPointer&) {
    return canvas.arrangement()->distribute(direction);
}
template <OrderChange change>
bool order(MDrawView& canvas, CanvasPointer&) {
    return canvas.arrangement()->changeOrder(change);
}
template <bool (CanvasArrangement::*operation)()>
bool run(MDrawView& canvas, CanvasPointer&) {
    return (canvas.arrangement().get()->*operation)();
}

bool holdSpace(MDrawView&, CanvasPointer& pointer) {
    pointer.setMainButtonPans(true);
    return true;
}

template <bool (ZoomedCanvasView::*zooming)()>
bool zoom(MDrawView&, CanvasPointer& pointer) {
    MDrawView* const canvas = pointer.canvasToZoom();
    return canvas && (canvas->*zooming)();
}

bool zoomIn(MDrawView&, CanvasPointer& pointer) {
    MDrawView* const canvas = pointer.canvasToZoom();
    return canvas && canvas->zoomBy(zoomStep);
}

bool zoomOut(MDrawView&, CanvasPointer& pointer) {
    MDrawView* const canvas = pointer.canvasToZoom();
    return canvas && canvas->zoomBy(1 / zoomStep);
}

constexpr CanvasKey table[] = {
    {"ctrl+z", &undo, true},
    {"ctrl+shift+z", &redo, true},
    {"ctrl+y", &redo, true},
    {"delete", &deleteSelection},
    {"backspace", &deleteSelection},
    {"escape", &escape, false, true},
    {"enter", &enter},
    {"ctrl+c", &copy, false, true},
    {"ctrl+x", &cut},
    {"ctrl+v", &paste},
    {"ctrl+l", &lockOrUnlock},
    {"ctrl+shift+l", &unlockAll},
    {"left", &nudge<-1, 0>, true},
    {"right", &nudge<1, 0>, true},
    {"up", &nudge<0, -1>, true},
    {"down", &nudge<0, 1>, true},
    {"shift+left", &nudge<-10, 0>, true},
    {"shift+right", &nudge<10, 0>, true},
    {"shift+up", &nudge<0, -10>, true},
    {"shift+down", &nudge<0, 10>, true},
    {"alt+left", &resize<-1, 0>, true},
    {"alt+right", &resize<1, 0>, true},
    {"alt+up", &resize<0, -1>, true},
    {"alt+down", &resize<0, 1>, true},
    {"alt+shift+left", &resize<-10, 0>, true},
    {"alt+shift+right", &resize<10, 0>, true},
    {"alt+shift+up", &resize<0, -10>, true},
    {"alt+shift+down", &resize<0, 10>, true},
    {"r", &turn<15>, true},
    {"shift+r", &turn<-15>, true},
    {"tab", &selectNext<true>, true},
    {"shift+tab", &selectNext<false>, true},
    {"n", &make},
    {"ctrl+a", &run<&CanvasArrangement::selectAll>},
    {"ctrl+d", &run<&CanvasArrangement::duplicate>},
    {"ctrl+g", &run<&CanvasArrangement::group>},
    {"ctrl+shift+g", &run<&CanvasArrangement::ungroup>},
    {"ctrl+]", &order<OrderChange::Forward>},
    {"ctrl+[", &order<OrderChange::Backward>},
    {"ctrl+shift+]", &order<OrderChange::ToFront>},
    {"ctrl+shift+[", &order<OrderChange::ToBack>},
    {"alt+a", &align<Alignment::Left>},
    {"alt+h", &align<Alignment::Center>},
    {"alt+d", &align<Alignment::Right>},
    {"alt+w", &align<Alignment::Top>},
    {"alt+v", &align<Alignment::Middle>},
    {"alt+s", &align<Alignment::Bottom>},
    {"alt+shift+h", &distribute<Direction::Horizontally>},
    {"alt+shift+v", &distribute<Direction::Vertically>},
    {"space", &holdSpace},
    {"ctrl+0", &zoom<&ZoomedCanvasView::zoomToFit>, false, true},
    {"ctrl+1", &zoom<&ZoomedCanvasView::zoomToPixels>, false, true},
    {"plus", &zoomIn, true, true},
    {"-", &zoomOut, true, true},
};

}  // namespace

std::span<const CanvasKey> CanvasKeys::keys() {
    return table;
}

bool CanvasKeys::press(std::string_view key, bool isRepeated) {
    const auto canvas = _pointer.canvas();
    if (!canvas || !canvas->window()) return false;
    ui::Window& window = *canvas->window();
    return pressInAlert(window, key, isRepeated) || window.takeKey(key, isRepeated) ||
           pressInText(key, true) || perform(key, isRepeated);
}

void CanvasKeys::release(std::string_view key) {
    const auto canvas = _pointer.canvas();
    // Where nothing can be changed it pans without the key.
    if (key.ends_with("space")) _pointer.setMainButtonPans(canvas && canvas->isReadOnly());
}

bool CanvasKeys::perform(std::string_view key, bool isRepeated) {
    const auto* const found = std::ranges::find(table, commandName(key), &CanvasKey::key);
    const auto canvas = _pointer.canvas();
    if (!canvas || found == std::end(table) || (isRepeated && !found->repeats)) return false;
    if (canvas->isReadOnly() && !found->isForReaders) return false;
    return found->run(*canvas, _pointer);
}

bool CanvasKeys::pressInText(std::string_view key, bool enterEnds) {
    const auto canvas = _pointer.canvas();
    if (!canvas || !canvas->window()) return false;
    const auto text = ui::TextView::focusedIn(*canvas->window());
    if (!text) return false;
    const bool ends = key == "ctrl+enter" || (enterEnds && key == "enter");
    if (ends && canvas->curEdittingTextTool()) {
        canvas->finishEditText();
        return true;
    }
    return text->handleKey(key) || isTyping(key);
}

bool CanvasKeys::pressInAlert(const ui::Window& window, std::string_view key, bool isRepeated) {
    const auto alert = ui::AlertView::topmostIn(window);
    if (alert) alert->handleKey(key, isRepeated);
    return alert != nullptr;
}

}  // namespace kalim
