#include "tests/random/ScenarioDriver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

std::string ScenarioDriver::nextLine() {
    using Action = void (ScenarioDriver::*)();
    struct Weighted {
        std::uint32_t weight;
        Action action;
    };
    // In percent.
    constexpr Weighted actions[] = {
        {26, &ScenarioDriver::draw},          {15, &ScenarioDriver::dragTool},
        {10, &ScenarioDriver::tapTool},       {8, &ScenarioDriver::twoFingers},
        {4, &ScenarioDriver::rotate},         {8, &ScenarioDriver::wait},
        {27, &ScenarioDriver::callSomething}, {2, &ScenarioDriver::startAnew}};
    if (!std::exchange(_hasBegun, true)) choosePoints();
    const bool interrupts = !_lines.empty() && happens(4);
    if (interrupts) {
        std::deque<JsonValue::Object> later;
        later.swap(_lines);
        switch (below(5)) {
            case 0:
                exportPicture();
                break;
            case 1:
            case 2:
                wait();
                break;
            default:
                callSomething();
        }
        _lines.insert(_lines.end(), later.begin(), later.end());
    } else if (_lines.empty() && _canvas.curEdittingTextTool() && happens(60)) {
        typeText();
    }
    while (_lines.empty()) {
        std::uint32_t left = below(100);
        const Weighted* chosen = actions;
        while (left >= chosen->weight)
            left -= (chosen++)->weight;
        (this->*chosen->action)();
    }
    const std::string line = dumpJson(_lines.front());
    _lines.pop_front();
    return line;
}

// Some canvases have the picture's points, and some end with it.
void ScenarioDriver::choosePoints() {
    if (happens(20)) call("setCanvasBasis", {MDrawView::usualBasis});
    if (happens(20)) call("setClipsToPicture", {true});
    if (happens(40)) call("setFineHandles", {true});
    if (happens(40)) call("setSnaps", {true});
}

// ---- fingers

void ScenarioDriver::draw() {
    if (happens(50)) {
        // A fifth is of the kit for how-to pictures. The tool types from 22 to 25 look different
        // with what lies around them.
        const std::uint32_t ofKit = 20 + below(7);
        const std::uint32_t type = happens(20) ? ofKit : below(8);
        // Half of the mosaic patches hide for certain or blur.
        const std::uint32_t style = below(3) + (type == 5 && happens(50) ? 10 : 0);
        call("beginDrawingForTypeWithDrawType", {type, style});
    }
    gfx::Point place = anywhere();
    touch("began", {place});
    // A second finger breaks some drawings off.
    const bool isBrokenOff = happens(6);
    const std::uint32_t moves = happens(30) ? 8 + below(6) : 1 + below(4);
    for (std::uint32_t move = 0; move < moves; ++move) {
        place = near(place, 60);
        touch("moved", {place});
    }
    if (isBrokenOff) touch("began", {place, anywhere()});
    Points lifted{place};
    if (isBrokenOff) lifted.push_back(anywhere());
    touch(happens(5) ? "cancelled" : "ended", lifted);
}

void ScenarioDriver::dragTool() {
    gfx::Point place = onSomeTool();
    if (happens(60)) {
        touch("began", {place});
        touch("ended", {place});
    }
    touch("began", {place});
    for (std::uint32_t moves = 1 + below(4); moves > 0; --moves) {
        place = near(place, 50);
        touch("moved", {place});
    }
    touch(happens(5) ? "cancelled" : "ended", {place});
}

void ScenarioDriver::tapTool() {
    const gfx::Point place = happens(80) ? onSomeTool() : anywhere();
    const std::uint32_t taps = 1 + below(3);
    for (std::uint32_t tap = 0; tap < taps; ++tap) {
        touch("began", {place});
        touch("ended", {happens(20) ? near(place, 2) : place});
        if (tap + 1 < taps && happens(50)) add({{"wait", 0.25 * (1 + below(6))}});
    }
}

void ScenarioDriver::twoFingers() {
    Points places{happens(50) ? onSomeTool() : anywhere(), anywhere()};
    if (happens(50)) touch("began", {places[0]});
    touch("began", places);
    for (std::uint32_t moves = 1 + below(4); moves > 0; --moves) {
        const gfx::Point together = near({}, 20);
        for (gfx::Point& place : places)
            place = near(place + together, 20);
        touch("moved", places);
    }
    if (happens(15)) {
        places.push_back(anywhere());
        touch("began", places);
    }
    touch(happens(10) ? "cancelled" : "ended", places);
}

void ScenarioDriver::rotate() {
    const auto gesture = [this](const char* state) {
        add({{"gesture", "rotation"}, {"state", state}, {"value", between(-3, 3)}});
    };
    if (!_canvas.hasSelectedTools()) selectSome();
    add({{"gesture", "rotation"}, {"state", "began"}});
    for (std::uint32_t changes = 1 + below(2); changes > 0; --changes)
        gesture("changed");
    gesture(happens(80) ? "ended" : "cancelled");
}

void ScenarioDriver::touch(const char* phase, const Points& points) {
    JsonValue::Array places;
    for (const gfx::Point p : points)
        places.push_back(toJson(p));
    JsonValue::Object line{{"touch", phase}, {"points", std::move(places)}};
    const std::vector<JsonValue::Array> keys{{},       {"shift"}, {"alt"},
                                             {"ctrl"}, {"space"}, {"shift", "alt"}};
    if (happens(6)) line.emplace_back("modifiers", oneOf(keys));
    add(std::move(line));
}

// ---- text and time

void ScenarioDriver::typeText() {
    if (!ui::TextView::focusedIn(*_canvas.window())) return;
    const std::vector<const char*> texts{"a", "word ", "Zwei Wörter", "文字", "\n", "12 mm"};
    const std::vector<const char*> keys{"backspace", "left",   "shift+left", "home",  "end",
                                        "enter",     "ctrl+a", "ctrl+z",     "delete"};
    switch (below(8)) {
        case 0:
            return add({{"key", oneOf(keys)}});
        case 1:
            return add({{"compose", oneOf(texts)}});
        case 2:
            return add(
                {{"keyboard", happens(50) ? std::floor(_canvas.bounds().size.height / 2) : 0}});
        case 3:
            return happens(50) ? call("finalizeCurrentDrawing") : wait();
        case 4:
            add({{"key", "ctrl+a"}});
            return add({{"key", "backspace"}});
        default:
            return add({{"type", oneOf(texts)}});
    }
}

void ScenarioDriver::wait() {
    const std::vector<double> lengths{0.015625, 0.125, 0.25, 0.5, 1.5, 3.25};
    add({{"wait", oneOf(lengths)}});
}

// ---- calls

void ScenarioDriver::callSomething() {
    const std::uint32_t choice = below(10);
    if (choice < 2) {
        selectSome();
    } else if (choice < 5) {
        for (std::uint32_t steps = 1 + below(3); steps > 0; --steps)
            call(happens(60) ? "undo" : "redo");
    } else if (choice == 7 && _canvas.forgiving()) {
        arrangeTools();
    } else if (choice < 8) {
        changeTools();
    } else {
        changeSettings();
    }
}

void ScenarioDriver::selectSome() {
    JsonValue::Array places;
    const auto count = static_cast<std::uint32_t>(_canvas.tools().size());
    for (std::uint32_t left = count == 0 ? 0 : 1 + below(3); left > 0; --left)
        places.push_back(below(count));
    call("selectTools", {std::move(places)});
}

void ScenarioDriver::changeTools() {
    struct Look {
        const char* name;
        JsonValue value;
    };
    const std::vector<Look> looks{{"opacity", 0.5},      {"dash", "dashed"}, {"dash", "solid"},
                                  {"fill", "#34C75980"}, {"heads", "both"},  {"bend", 0.25},
                                  {"start", 4},          {"style", "a"},     {"sign", "heart"}};
    switch (below(7)) {
        case 6: {
            const Look& look = oneOf(looks);
            return call("setToolProperty", {look.name, look.value});
        }
        case 0:
            return call("deleteSelectedTools");
        case 1:
            return call("setDrawTypeForType", {below(3), below(8)});
        case 2:
            return call("setDrawLineWidth", {1 + below(24)});
        case 3:
            return call("finalizeCurrentDrawing");
        case 4:
            return call("selectNone");
        default:
            return call("setDrawColorIsTranslucent", {anyColor(), happens(50)});
    }
}

// Others leave some of the points of tools out of their steps.
void ScenarioDriver::arrangeTools() {
    const std::vector<const char*> plain{"selectAll", "group",     "ungroup",      "lock",
                                         "unlock",    "duplicate", "cancelGesture"};
    const std::vector<const char*> orders{"forward", "backward", "toFront", "toBack"};
    const std::vector<const char*> edges{"left", "center", "right", "top", "middle", "bottom"};
    const std::vector<const char*> directions{"horizontally", "vertically"};
    switch (below(6)) {
        case 0:
            return call("changeOrder", {oneOf(orders)});
        case 1:
            return call("align", {oneOf(edges)});
        case 2:
            return call("distribute", {oneOf(directions)});
        case 3:
            return call("nudge", {toJson(near({}, 20))});
        case 4:
            return call("selectWithin", {JsonValue::Array{below(200), below(300), 200, 300}});
        default:
            return call(oneOf(plain));
    }
}

void ScenarioDriver::changeSettings() {
    switch (below(8)) {
        case 6:
        case 7:
            return cutPicture();
        case 0:
            return call("setShowMeasurement", {happens(60)});
        case 1:
            return call("setCalibration", {below(3) * 0.25});
        case 2:
            return call("setUnit", {happens(50) ? "mm" : "um"});
        case 3:
            return call("setFScal", {happens(50) ? 0.0 : 0.5 + 0.25 * below(5)});
        case 4:
            return call("setDefualtBackgroundColor", {anyColor()});
        default:
            return exportPicture();
    }
}

void ScenarioDriver::cutPicture() {
    if (!_canvas.sourceImage()) return exportPicture();
    const gfx::PixelSize pixels = _canvas.sourceImage()->pixelSize();
    const auto part = [this](int length) {
        const std::uint32_t from = below(static_cast<std::uint32_t>(length));
        return std::pair{from, 1 + below(static_cast<std::uint32_t>(length) - from)};
    };
    const auto [x, width] = part(pixels.width);
    const auto [y, height] = part(pixels.height);
    const JsonValue crop = happens(60) ? JsonValue::Array{x, y, width, height} : JsonValue();
    call("setPictureCut", {JsonValue::Object{{"crop", crop}, {"quarterTurns", below(4)}}});
}

// Kinds that no finger makes.
void ScenarioDriver::make() {
    const std::vector<const char*> kinds{"MDrawPolyline", "MDrawAngle",    "MDrawArc",
                                         "MDrawComment",  "MDrawFatArrow", "MDrawRoundedRect",
                                         "MDrawNumber",   "MDrawStamp"};
    JsonValue::Array places;
    for (std::uint32_t left = 2 + below(3); left > 0; --left)
        places.push_back(toJson(anywhere()));
    add({{"make", oneOf(kinds)}, {"points", std::move(places)}});
}

void ScenarioDriver::exportPicture() {
    JsonValue::Object line{{"export", "composite.png"}};
    if (happens(30)) line.emplace_back("at", "picture");
    add(std::move(line));
}

void ScenarioDriver::startAnew() {
    switch (below(8)) {
        case 0:
        case 1:
            return add({{"picture", "picture.png"}});
        case 2:
        case 3:
            return call("clearTools");
        case 4:
        case 5:
        case 6:
            return make();
        default:
            return call("removeInvaildTools");
    }
}

void ScenarioDriver::call(const char* name, JsonValue::Array arguments) {
    add({{"call", name}, {"args", std::move(arguments)}});
}

// ---- choices

// In quarters, so that a line is short.
double ScenarioDriver::between(double low, double high) {
    const auto quarters = static_cast<std::uint32_t>((high - low) * 4) + 1;
    return low + below(quarters) * 0.25;
}

gfx::Point ScenarioDriver::anywhere() {
    const gfx::Size room = _canvas.bounds().size;
    const double x = between(0, room.width - 1);
    return {x, between(0, room.height - 1)};
}

gfx::Point ScenarioDriver::onSomeTool() {
    if (!_canvas.hasTools()) return anywhere();
    const ToolRef tool = oneOf(_canvas.tools());
    const gfx::Rect frame = tool->frame();
    const double x = below(3) * 0.5;
    const double y = below(3) * 0.5;
    const gfx::Point place{frame.minX() + frame.size.width * x,
                           frame.minY() + frame.size.height * y};
    return near(_canvas.mViewTransform().apply(tool->transformPoint(place)), 4);
}

// Stays within the view, where a finger can land.
gfx::Point ScenarioDriver::near(gfx::Point p, double distance) {
    const gfx::Size room = _canvas.bounds().size;
    const double x = std::round(4 * p.x) / 4 + between(-distance, distance);
    const double y = std::round(4 * p.y) / 4 + between(-distance, distance);
    return {std::clamp(x, 0.0, room.width - 1), std::clamp(y, 0.0, room.height - 1)};
}

JsonValue ScenarioDriver::anyColor() {
    const std::vector<const char*> colors{"#FF3B30", "#0A84FF80", "#FFFFFF", "#34C759"};
    return oneOf(colors);
}

}  // namespace kalim::test
