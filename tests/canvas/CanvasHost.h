#pragma once

#include <string>
#include <vector>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "tests/support/TestHost.h"

namespace kalim::test {

// Writes down what a canvas tells its owner, a line a message.
class CanvasEvents : public MDrawViewDelegate {
public:
    void didDrawStarted() override { lines.push_back("started"); }
    void seletedToolsStateChanged(bool hasSelection) override {
        lines.push_back(hasSelection ? "selected" : "unselected");
    }
    void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                           const gfx::ColorRef& color,
                                                           double lineWidth) override {
        lines.push_back("type " + std::to_string(type) + " " + (color ? color->hex() : "none") +
                        " " + std::to_string(static_cast<int>(lineWidth)));
    }
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override {
        lines.push_back(std::string(canUndo ? "undo " : "- ") + (canRedo ? "redo" : "-"));
    }
    std::vector<std::string> take() { return std::exchange(lines, {}); }

    std::vector<std::string> lines;
};

// A canvas filling a window of a test host, and one finger to draw with. Points are view points.
class CanvasHost : public TestHost {
public:
    explicit CanvasHost(TestHostOptions options = {}) : TestHost(options) {
        canvas = MDrawView::initWithFrame({{}, window().size()});
        events = std::make_shared<CanvasEvents>();
        canvas->setDrawViewdelegate(events);
        window().rootView()->addSubview(canvas);
        canvas->setDrawLineWidth(2);
    }

    void pick(ToolType::Number type, std::uint64_t style = 0) {
        canvas->beginDrawingForTypeWithDrawType(type, style);
    }
    void down(gfx::Point p) { window().fingersBegan({{1, _at = p}}); }
    void move(gfx::Point p) { window().fingersMoved({{1, _at = p}}); }
    void up() { window().fingersEnded({{1, _at}}); }
    void up(gfx::Point p) { window().fingersEnded({{1, p}}); }
    void tap(gfx::Point p) {
        down(p);
        up();
    }
    void drag(gfx::Point from, gfx::Point to) {
        down(from);
        move(to);
        up();
    }
    // Draws a tool of that type and returns it; null when nothing came of it.
    ToolRef draw(ToolType::Number type, gfx::Point from, gfx::Point to) {
        const std::size_t before = canvas->tools().size();
        pick(type);
        drag(from, to);
        return canvas->tools().size() > before ? canvas->tools().back() : nullptr;
    }
    // A picture of one colour.
    gfx::ImageRef plainPicture(int width, int height, gfx::Color color, double scale = 1) {
        gfx::Bitmap bitmap(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                bitmap.setColorAt(x, y, color);
        }
        return environment().device().makeImage(std::move(bitmap), scale,
                                                gfx::ImageOrientation::Up);
    }
    bool isSelected(const ToolRef& tool) const {
        return canvas->handingTools() && canvas->handingTools()->containTool(tool);
    }

    std::shared_ptr<MDrawView> canvas;
    std::shared_ptr<CanvasEvents> events;

private:
    gfx::Point _at;
};

}  // namespace kalim::test
