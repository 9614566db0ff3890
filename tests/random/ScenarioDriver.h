#pragma once

#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim::test {

// Thinks up the lines of a scenario, always the same from one seed: somebody who draws, drags,
// zooms, types and presses every button, now and then in the middle of something else.
class ScenarioDriver {
public:
    // Looks at the canvas to find what there is to touch.
    ScenarioDriver(MDrawView& canvas, std::uint32_t seed) : _canvas(canvas), _random(seed) {}

    std::string nextLine();

private:
    using Points = std::vector<gfx::Point>;

    // ---- actions; each puts its lines into the queue
    void draw();
    void dragTool();
    void tapTool();
    void twoFingers();
    void rotate();
    void typeText();
    void wait();
    void callSomething();
    void selectSome();
    void changeTools();
    void arrangeTools();
    void changeSettings();
    void cutPicture();
    void startAnew();
    void make();
    void choosePoints();
    void exportPicture();

    // ---- lines
    void touch(const char* phase, const Points& points);
    void call(const char* name, JsonValue::Array arguments = {});
    void add(JsonValue::Object line) { _lines.push_back(std::move(line)); }

    // ---- choices
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(_random() % end); }
    bool happens(std::uint32_t percent) { return below(100) < percent; }
    double between(double low, double high);
    template <typename Choice>
    const Choice& oneOf(const std::vector<Choice>& choices) {
        return choices[below(static_cast<std::uint32_t>(choices.size()))];
    }
    gfx::Point anywhere();
    // On some tool's corner, edge or inside, view points; anywhere when there is no tool.
    gfx::Point onSomeTool();
    gfx::Point near(gfx::Point p, double distance);
    JsonValue anyColor();

    MDrawView& _canvas;
    std::mt19937 _random;
    std::deque<JsonValue::Object> _lines;
    bool _hasBegun = false;
};

}  // namespace kalim::test
