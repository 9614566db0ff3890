#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"

// A canvas that a host shows without the editor.

namespace kalim::test {

namespace {

struct Screen : ui::ViewController {
    void loadView() override { setView(canvas); }
    const std::shared_ptr<MDrawView> canvas = MDrawView::initWithFrame({});
};

class BareCanvas : public testing::Test {
protected:
    BareCanvas() {
        canvas.setForgiving(true);
        canvas.setLargestMagnification(8);
        seat.presentCanvas(screen, screen->canvas);
        canvas.setSnipImage(device->makeImage(gfx::Bitmap(300, 300), 1, gfx::ImageOrientation::Up));
        canvas.beginDrawingForTypeWithDrawType(ToolType::Rectangle, 0);
        wait();
    }
    void wait() {
        environment->wait(1);
        seat.show();
    }
    void press(const std::vector<const char*>& names) {
        for (const char* const name : names) {
            EXPECT_TRUE(seat.pressKey(name)) << name;
            seat.releaseKey(name);
        }
    }
    void drag(PointerButton button, gfx::Point from, gfx::Point to) {
        seat.mousePressed(button, from);
        seat.mouseMoved(to);
        seat.mouseReleased(button, to);
    }
    // How many tools there are, and are selected; the zoom; where the picture's corner is shown,
    // and where the first tool lies in it.
    std::string state() const {
        const auto whole = [](gfx::Point p) {
            return " " + std::to_string(std::lround(p.x)) + "," + std::to_string(std::lround(p.y));
        };
        const gfx::Point corner = canvas.bgImgRect().origin;
        const auto chosen = canvas.handingTools();
        const gfx::Point shown = canvas.mViewTransform().apply(corner);
        return std::to_string(canvas.tools().size()) + " " +
               std::to_string(chosen ? chosen->subTools().size() : 0) + " x" +
               std::to_string(std::lround(canvas.getScale() * 100)) + whole(shown) +
               (canvas.hasTools() ? whole(canvas.tools().front()->frame().origin - corner) : "");
    }

    std::shared_ptr<gfx::Device> device = gfx::CairoDevice::make();
    std::shared_ptr<HeadlessEnvironment> environment =
        std::make_shared<HeadlessEnvironment>(*device, 1);
    EditorSeat seat{environment, {400, 400}};
    std::shared_ptr<Screen> screen = std::make_shared<Screen>();
    MDrawView& canvas = *screen->canvas;
};

constexpr auto left = PointerButton::Main;

}  // namespace

TEST_F(BareCanvas, IsZoomedMovedAndHasKeys) {
    const struct {
        const char* name;
        std::function<void()> act;
        const char* state;
    } steps[] = {
        {"shown", [] {}, "0 0 x100 50,50"},
        {"wheel",
         [&] {
             seat.wheelTurned({100, 100}, 5);
         },
         "0 0 x201 -1,-1"},
        {"middle button",
         [&] {
             drag(PointerButton::Middle, {50, 50}, {90, 70});
         },
         "0 0 x201 39,19"},
        {"space",
         [&] {
             seat.pressKey("space");
             drag(left, {50, 50}, {40, 30});
             seat.releaseKey("space");
         },
         "0 0 x201 29,-1"},
        {"shift and wheel",
         [&] {
             seat.setModifiers({.shift = true});
             seat.wheelTurned({100, 100}, -1);
             seat.setModifiers({});
         },
         "0 0 x201 -19,-1"},
        {"touchpad",
         [&] {
             seat.scrolled({100, 100}, {19, 1});
         },
         "0 0 x201 0,0"},
        {"zoom out", [&] { press({"-"}); }, "0 0 x161 40,40"},
        {"fit", [&] { press({"ctrl+0"}); }, "0 0 x100 50,50"},
        {"plus", [&] { press({"plus"}); }, "0 0 x125 13,13"},
        {"pixels", [&] { press({"ctrl+1"}); }, "0 0 x100 50,50"},
        {"drawn",
         [&] {
             drag(left, {100, 100}, {200, 160});
         },
         "1 0 x100 50,50 50,50"},
        {"undone", [&] { press({"ctrl+z"}); }, "0 0 x100 50,50"},
        {"redone", [&] { press({"ctrl+shift+z"}); }, "1 0 x100 50,50 50,50"},
        {"chosen", [&] { press({"ctrl+a"}); }, "1 1 x100 50,50 50,50"},
        {"nudged",
         [&] {
             press({"right", "shift+down"});
         },
         "1 1 x100 50,50 51,60"},
        {"copied",
         [&] {
             press({"ctrl+c", "ctrl+v", "ctrl+d"});
         },
         "3 1 x100 50,50 51,60"},
        {"cut", [&] { press({"ctrl+x"}); }, "2 0 x100 50,50 51,60"},
        {"deleted",
         [&] {
             press({"ctrl+a", "delete", "ctrl+z", "ctrl+a"});
         },
         "2 2 x100 50,50 51,60"},
        {"let go", [&] { press({"escape"}); }, "2 0 x100 50,50 51,60"},
        {"taken back",
         [&] {
             seat.mousePressed(left, {250, 250});
             seat.mouseMoved({300, 300});
             press({"escape"});
             seat.mouseReleased(left, {300, 300});
         },
         "2 0 x100 50,50 51,60"},
    };
    for (const auto& step : steps) {
        step.act();
        wait();
        EXPECT_EQ(state(), step.state) << step.name;
    }
    EXPECT_FALSE(seat.pressKey("escape")) << "left to the host";
    EXPECT_FALSE(seat.keys() || seat.remote() || seat.editor());

    seat.setReadOnly(true);
    for (const char* const key : {"ctrl+z", "ctrl+a", "ctrl+v", "space"})
        EXPECT_FALSE(seat.pressKey(key)) << key;
    press({"plus"});
    wait();
    drag(left, {50, 50}, {60, 60});
    wait();
    EXPECT_EQ(state(), "2 0 x125 23,23 51,60") << "the main button pans";
    seat.window().fingersBegan({{1, {60, 60}}});
    for (const double place : {80, 110})
        seat.window().fingersMoved({{1, {place, 60}}});
    seat.window().fingersEnded({{1, {110, 60}}});
    wait();
    EXPECT_EQ(state(), "2 0 x125 53,23 51,60") << "and so does one finger";
    seat.present(nullptr);
    EXPECT_FALSE(seat.canvas() || seat.pointer() || seat.pressKey("plus"));
}

}  // namespace kalim::test
