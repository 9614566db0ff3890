#include <gtest/gtest.h>

#include <string>

#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/window/Hover.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;

// Writes what the pointer does in it.
class HoverView : public View {
public:
    static std::shared_ptr<HoverView> make(std::string name, const gfx::Rect& frame, Lines& lines) {
        const std::shared_ptr<HoverView> view(new HoverView(std::move(name), lines));
        view->init(frame);
        return view;
    }
    void pointerEntered(gfx::Point p) override { note("entered " + test::Stage::rounded(p)); }
    void pointerMoved(gfx::Point p) override { note("moved " + test::Stage::rounded(p)); }
    void pointerExited() override { note("exited"); }
    std::optional<Cursor> cursorAt(gfx::Point /*p*/) override { return cursor; }

    std::optional<Cursor> cursor;

private:
    HoverView(std::string name, Lines& lines) : _name(std::move(name)), _lines(lines) {}
    void note(const std::string& what) { _lines.push_back(_name + " " + what); }

    std::string _name;
    Lines& _lines;
};

// Bar b lies in pane a, at its place 50 50.
struct HoverTest : testing::Test, test::Stage {
    HoverTest() {
        root->addSubview(a);
        a->addSubview(b);
        a->cursor = Cursor::Cross;
        window().setCursorHandler([this](Cursor cursor) {
            lines.push_back("cursor " + std::to_string(static_cast<int>(cursor)));
        });
    }

    std::shared_ptr<HoverView> a = HoverView::make("a", {100, 100, 200, 200}, lines);
    std::shared_ptr<HoverView> b = HoverView::make("b", {50, 50, 100, 20}, lines);
};

}  // namespace

TEST_F(HoverTest, TellsViewsAndThoseAboveThem) {
    window().pointerHovered({10, 10});
    EXPECT_EQ(take(), Lines());
    window().pointerHovered({110, 120});
    EXPECT_EQ(take(), (Lines{"a entered 10 20", "cursor 2"}));
    b->cursor = Cursor::Text;
    window().pointerHovered({160, 160});
    EXPECT_EQ(take(), (Lines{"a moved 60 60", "b entered 10 10", "cursor 3"}));
    window().pointerHovered({160, 160});
    EXPECT_EQ(take(), Lines());
    window().pointerHovered({110, 110});
    EXPECT_EQ(take(), (Lines{"b exited", "a moved 10 10", "cursor 2"}));
    window().pointerLeft();
    EXPECT_EQ(take(), (Lines{"a exited", "cursor 0"}));
}

TEST_F(HoverTest, StaysWithWhatAFingerIsOn) {
    window().pointerHovered({160, 160});
    one.down({160, 160});
    take();
    window().pointerHovered({10, 10});
    EXPECT_EQ(take(), Lines());
    a->cursor = Cursor::Grabbing;
    window().pointerHovered({11, 10});
    EXPECT_EQ(take(), (Lines{"cursor 11"}));
    one.up();
    EXPECT_EQ(take(), (Lines{"b exited", "a exited", "cursor 0"}));
}

TEST_F(HoverTest, FollowsViewsUnderAPointerThatStands) {
    window().pointerHovered({160, 160});
    take();
    b->setHidden(true);
    window().display();
    EXPECT_EQ(take(), (Lines{"b exited"}));
    a->removeFromSuperview();
    window().display();
    EXPECT_EQ(take(), (Lines{"a exited", "cursor 0"}));
    EXPECT_EQ(window().hover().view(), root);
}

TEST_F(HoverTest, IsHeldWhileThePointerIsBusy) {
    window().pointerHovered({110, 110});
    take();
    window().hover().overrideCursor(Cursor::Grabbing);
    window().pointerHovered({10, 10});
    EXPECT_EQ(take(), (Lines{"cursor 11"}));
    window().hover().overrideCursor(std::nullopt);
    EXPECT_EQ(take(), (Lines{"a exited", "cursor 0"}));
}

TEST_F(HoverTest, AWheelMovesWhatScrollsUnderThePointer) {
    const auto scroll = ScrollView::initWithFrame({0, 0, 100, 50});
    scroll->setContentSize({100, 120});
    scroll->addSubview(View::initWithFrame({0, 0, 100, 120}));
    root->addSubview(scroll);
    EXPECT_FALSE(window().pointerScrolled({10, 10}, {0, -30}));
    scroll->setScrolledByWheel(true);
    for (const auto& [distance, offset] : {std::pair(-30.0, 30.0), {-90, 70}, {20, 50}}) {
        EXPECT_TRUE(window().pointerScrolled({10, 10}, {0, distance}));
        EXPECT_EQ(scroll->contentOffset(), gfx::Point(0, offset));
    }
    EXPECT_FALSE(window().pointerScrolled({110, 10}, {0, -30}));
}

}  // namespace kalim::ui
