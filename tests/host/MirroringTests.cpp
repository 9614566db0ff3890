#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <string>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/ui/control/Loupe.h"

namespace kalim::test {

namespace {

gfx::Rect placeOf(const ui::View& view) {
    return view.convertRectTo(view.bounds(), nullptr);
}

// What is where while a finger drags the end of an arrow, in a language. Window points.
struct Screen {
    Screen(const char* language, SeatLayout layout, gfx::Size size) {
        environment->setLanguage(language);
        seat = std::make_unique<EditorSeat>(environment, size);
        seat->setLayout(layout);
        // Its left half is red.
        gfx::Bitmap halves(600, 400);
        for (int i = 0; i < 300 * 400; ++i)
            halves.setColorAt(i % 300, i / 300, {1, 0, 0});
        seat->present(EditorSeat::makeEditor(
            device->makeImage(std::move(halves), 1, gfx::ImageOrientation::Up), {}, {}));
        wait();
        TesselViewController& editor = *seat->editor();
        if (layout == SeatLayout::Phone) {
            // Of one width in all languages.
            editor.toolView()->doneButton()->setTitle("x");
            editor.setTopNavigationItemTitle(false, "x");
            seat->setHostRoom(40);
            wait();
            controls = {{"what a page lays there", seat->hostRoom()},
                        {"undo", placeOf(*editor.toolView()->undoButton())},
                        {"redo", placeOf(*editor.toolView()->redoButton())},
                        {"pen", placeOf(*editor.penView())}};
        } else {
            for (const auto& [path, view] : editor.shell()->namedViews())
                if (path.starts_with("desk.pens.")) controls[path] = placeOf(*view);
        }
        MDrawView& canvas = *seat->canvas();
        picture = canvas.convertRectTo(canvas.mViewTransform().apply(canvas.bgImgRect()), nullptr);
        seat->remote()->choosePen(EditorPenArrow);
        drag({100, 60}, {200, 110});
        seat->window().fingersEnded({{7, picture.origin + gfx::Point{200, 110}, {}}});
        wait();
        canvas.selectTools({canvas.tools().back()});
        drag({200, 110}, {230, 130});
        for (const auto& view : canvas.superview()->subviews())
            if (std::dynamic_pointer_cast<ui::Loupe>(view)) loupe = placeOf(*view);
        const MDrawTool& arrow = *canvas.tools().back();
        tip = canvas.convertPointTo(canvas.mViewTransform().apply(arrow.endPoint()), nullptr);
        seat->show();
        pixels = seat->window().surface()->makeImage()->pixels();
    }
    ~Screen() { seat = nullptr; }

    void wait() {
        environment->wait(0.6);
        seat->show();
    }
    // Between places of the picture.
    void drag(gfx::Point from, gfx::Point to) {
        seat->window().fingersBegan({{7, picture.origin + from, {}}});
        seat->window().fingersMoved({{7, picture.origin + (from + to) * 0.5, {}}});
        seat->window().fingersMoved({{7, picture.origin + to, {}}});
    }
    bool isRedAt(gfx::Point p) const {
        const gfx::Color color = pixels->colorAt(static_cast<int>(p.x), static_cast<int>(p.y));
        return color.red > 0.9 && color.green < 0.1;
    }

    std::shared_ptr<gfx::CairoDevice> device = gfx::CairoDevice::make();
    std::shared_ptr<HeadlessEnvironment> environment =
        std::make_shared<HeadlessEnvironment>(*device, 1);
    std::unique_ptr<EditorSeat> seat;
    std::map<std::string, gfx::Rect> controls;
    gfx::Rect picture;
    gfx::Rect loupe;
    gfx::Point tip;
    gfx::BitmapRef pixels;
};

}  // namespace

TEST(Mirroring, TurnsTheShellRoundAndNeitherThePictureNorTheDrawings) {
    const struct {
        SeatLayout layout;
        gfx::Size size;
    } cases[] = {{SeatLayout::Phone, {390, 844}}, {SeatLayout::Desk, {1100, 720}}};
    for (const auto& [layout, size] : cases) {
        const Screen left("en", layout, size);
        const Screen right("he", layout, size);
        ASSERT_EQ(left.controls.size(), right.controls.size());
        for (const auto& [name, place] : left.controls) {
            EXPECT_NEAR(right.controls.at(name).minX(), size.width - place.maxX(), 0.01) << name;
            EXPECT_NEAR(right.controls.at(name).minY(), place.minY(), 0.01) << name;
        }
        EXPECT_NEAR(right.picture.minX(), size.width - left.picture.maxX(), 0.01);
        for (const Screen* screen : {&left, &right}) {
            EXPECT_TRUE(screen->isRedAt(screen->picture.origin + gfx::Point{5, 5}));
            EXPECT_NEAR(screen->tip.x - screen->picture.minX(), 230, 0.01);
            EXPECT_NEAR(screen->loupe.midX(), screen->tip.x, 0.01);
        }
    }
}

// What it scrolls over shows through but for its outer half, where the arrow is.
TEST(Mirroring, TurnsTheMarksOfABarThatScrolls) {
    constexpr gfx::Size size{520, 400};
    const Screen left("en", SeatLayout::Desk, size);
    const Screen right("he", SeatLayout::Desk, size);
    const auto markOf = [](const Screen& screen) {
        for (const auto& [path, view] : screen.seat->editor()->shell()->namedViews())
            if (path == "desk.style.more") return placeOf(*view);
        return gfx::Rect();
    };
    const gfx::Rect mark = markOf(left);
    ASSERT_FALSE(mark.isEmpty());
    for (int x = 1; x < mark.size.width / 3; ++x) {
        for (int y = 0; y < mark.size.height; ++y) {
            const int row = static_cast<int>(mark.minY()) + y;
            const gfx::Color one = left.pixels->colorAt(static_cast<int>(mark.maxX()) - x, row);
            const gfx::Color other =
                right.pixels->colorAt(static_cast<int>(markOf(right).minX()) + x - 1, row);
            ASSERT_NEAR(one.red, other.red, 0.05) << x << " " << y;
        }
    }
}

}  // namespace kalim::test
