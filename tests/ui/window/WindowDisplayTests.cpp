#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;
using Rects = std::vector<gfx::Rect>;

const gfx::ColorRef blue = gfx::makeColor(0, 0, 1);

std::string described(const Rects& rects) {
    std::string text;
    for (const gfx::Rect& rect : rects) {
        char line[120];
        std::snprintf(line, sizeof line, "(%g %g %g %g)", rect.minX(), rect.minY(), rect.size.width,
                      rect.size.height);
        text += line;
    }
    return text;
}

struct WindowDisplay : testing::Test, test::Stage {
    explicit WindowDisplay(double scale = 1) : Stage({100, 100}, scale) {}

    // What the next display paints; each damaged rectangle is cleared first, which is left out.
    Lines show() {
        window().display();
        Lines drawn = takeDrawing();
        cleared = std::erase_if(
            drawn, [](const std::string& line) { return line.ends_with("blend=clear"); });
        return drawn;
    }

    std::size_t cleared = 0;
};

// The same where four pixels make a point.
struct FineWindowDisplay : WindowDisplay {
    FineWindowDisplay() : WindowDisplay(2) {}
};

// Draws what a test tells it to.
class Painter : public View {
public:
    static std::shared_ptr<Painter> make(const gfx::Rect& frame) {
        struct Constructible : Painter {};
        const std::shared_ptr<Painter> view = std::make_shared<Constructible>();
        view->init(frame);
        return view;
    }
    std::function<void(gfx::Context& context, const gfx::Rect& dirty)> onDraw;
    std::function<void()> onLayout;

protected:
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override {
        if (onDraw) onDraw(context, dirty);
    }
    void layoutSubviews() override {
        if (onLayout) onLayout();
    }
};

TEST_F(FineWindowDisplay, DrawsEverythingFirstAndThenNothing) {
    addView({10, 10, 20, 20});
    EXPECT_EQ(window().surface(), nullptr);
    EXPECT_EQ(show(), (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]",
                             "fill [M 10,10 L 30,10 L 30,30 L 10,30 Z] #FF0000FF", "unclip"}));
    EXPECT_EQ(window().lastCost().pixels, 40000);
    EXPECT_EQ(window().lastCost().views, 1);
    EXPECT_FALSE(window().surface()->isOpaque());
    const auto surface = window().surface();
    EXPECT_EQ(window().takeDrawn(), Rects{gfx::Rect(0, 0, 200, 200)});

    EXPECT_FALSE(window().needsDisplay());
    EXPECT_EQ(show(), Lines());
    EXPECT_EQ(window().takeDrawn(), Rects());
    EXPECT_EQ(window().lastCost().pixels, 40000) << "a display without a frame costs nothing";

    window().setSize({50, 60});
    show();
    EXPECT_EQ(window().takeDrawn(), Rects{gfx::Rect(0, 0, 100, 120)});
    EXPECT_NE(window().surface(), surface);
    EXPECT_EQ(root->frame(), gfx::Rect(0, 0, 50, 60));
}

TEST_F(WindowDisplay, EveryChangeDrawsTheOldAndTheNewPlaceAndNoMore) {
    const auto other = addView({60, 60, 30, 30}, blue);
    const auto view = addView({10, 10, 10, 10});
    const auto child = View::initWithFrame({20, 0, 5, 5});
    show();
    window().takeDrawn();
    const auto frame = [](auto& moved, double x, double y, double w, double h) {
        return [&moved, x, y, w, h] { moved->setFrame({x, y, w, h}); };
    };
    const auto center = [](auto& moved, double x, double y) {
        return [&moved, x, y] { moved->setCenter({x, y}); };
    };
    const auto doubled = gfx::AffineTransform::scaling(1, 2);
    const struct {
        const char* what;
        std::function<void()> change;
        const char* drawn;
    } cases[] = {
        {"a step", center(view, 18, 15), "(10 10 13 10)"},
        {"a leap", frame(view, 80, 10, 10, 10), "(13 10 10 10)(80 10 10 10)"},
        {"move and resize", frame(view, 10, 80, 2, 2), "(80 10 10 10)(10 80 2 2)"},
        {"back", frame(view, 10, 10, 10, 10), "(10 80 2 2)(10 10 10 10)"},
        {"no change", frame(view, 10, 10, 10, 10), ""},
        {"hiding", [&] { view->setHidden(true); }, "(10 10 10 10)"},
        {"moving unseen", frame(view, 20, 10, 10, 10), ""},
        {"showing", [&] { view->setHidden(false); }, "(20 10 10 10)"},
        {"between pixels", frame(view, 20.5, 10, 10, 10), "(20 10 11 10)"},
        {"scaling", [&] { view->setTransform(doubled); }, "(20 5 11 20)"},
        {"unscaling", [&] { view->setTransform({}); }, "(20 5 11 20)"},
        {"to whole pixels", frame(view, 20, 10, 10, 10), "(20 10 11 10)"},
        {"a child outside", [&] { view->addSubview(child); }, "(40 10 5 5)"},
        {"moved with its child", center(view, 25, 20), "(20 10 25 15)"},
        {"clipped", [&] { view->setClipsToBounds(true); }, "(20 15 25 10)"},
        {"child moves unseen", center(child, 40, 3), ""},
        {"scrolled into sight", [&] { view->setBounds(gfx::Rect(35, 0, 10, 10)); },
         "(20 15 10 10)"},
        {"a part", [&] { view->setNeedsDisplay(gfx::Rect(30, 8, 10, 10)); }, "(20 23 5 2)"},
        {"same colour", [&] { view->setBackgroundColor(gfx::makeColor(1, 0, 0)); }, ""},
        {"other colour", [&] { view->setBackgroundColor(blue); }, "(20 15 10 10)"},
        {"order", [&] { root->sendSubviewToBack(*view); }, "(20 15 10 10)"},
        {"order as it is", [&] { root->sendSubviewToBack(*view); }, ""},
        {"beyond the window", frame(other, 90, 60, 30, 30), "(60 60 40 30)"},
        {"removal", [&] { view->removeFromSuperview(); }, "(20 15 10 10)"},
    };
    for (const auto& each : cases) {
        each.change();
        show();
        EXPECT_EQ(described(window().takeDrawn()), each.drawn) << each.what;
    }
}

TEST_F(FineWindowDisplay, OnlyViewsThatMeetTheDamageDraw) {
    for (int i = 0; i < 10; ++i)
        addView({i * 10.0, 0, 10, 10});
    const auto mover = addView({0, 50, 5, 5}, blue);
    show();
    mover->setFrame({12, 5, 5, 5});
    EXPECT_EQ(show(), (Lines{"clip [M 0,50 L 5,50 L 5,55 L 0,55 Z]", "unclip",
                             "clip [M 12,5 L 17,5 L 17,10 L 12,10 Z]",
                             "fill [M 10,0 L 20,0 L 20,10 L 10,10 Z] #FF0000FF",
                             "fill [M 12,5 L 17,5 L 17,10 L 12,10 Z] #0000FFFF", "unclip"}));
    EXPECT_EQ(cleared, 2u);
    EXPECT_EQ(window().lastDamage(), (Rects{{0, 100, 10, 10}, {24, 10, 10, 10}}));
    EXPECT_EQ(window().lastCost().pixels, 200);
    EXPECT_EQ(window().lastCost().views, 2);
}

TEST_F(WindowDisplay, AlphaAppliesToAViewAsAWhole) {
    const auto plain = addView({0, 0, 10, 10});
    plain->setAlpha(0.5);
    const auto family = addView({50, 50, 20, 20});
    const auto child = View::initWithFrame({5, 5, 5, 5});
    child->setBackgroundColor(blue);
    family->addSubview(child);
    family->setAlpha(0.25);
    EXPECT_EQ(show(),
              (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]",
                     "fill [M 0,0 L 10,0 L 10,10 L 0,10 Z] #FF0000FF alpha=0.5",
                     "begin group alpha=0.25", "fill [M 50,50 L 70,50 L 70,70 L 50,70 Z] #FF0000FF",
                     "fill [M 55,55 L 60,55 L 60,60 L 55,60 Z] #0000FFFF", "end group", "unclip"}));
    plain->setNeedsDisplay();
    EXPECT_EQ(show(), (Lines{"clip [M 0,0 L 10,0 L 10,10 L 0,10 Z]",
                             "fill [M 0,0 L 10,0 L 10,10 L 0,10 Z] #FF0000FF alpha=0.5", "unclip"}))
        << "no group for what is not drawn";
    family->setAlpha(0);
    child->setNeedsDisplay();
    EXPECT_EQ(show(), (Lines{"clip [M 50,50 L 70,50 L 70,70 L 50,70 Z]", "unclip"}));
}

TEST_F(WindowDisplay, DrawingIsCutAtTheBoundsAndSubviewsWhereTheViewClips) {
    const auto painter = Painter::make({20, 20, 10, 10});
    painter->setBounds({5, 5, 10, 10});
    painter->setTransform(gfx::AffineTransform::scaling(2, 2));
    std::vector<gfx::Rect> dirty;
    painter->onDraw = [&](gfx::Context& context, const gfx::Rect& part) {
        dirty.push_back(part);
        context.fillRect({0, 0, 50, 50});
    };
    const auto child = View::initWithFrame({0, 0, 10, 10});
    child->setBackgroundColor(blue);
    painter->addSubview(child);
    root->addSubview(painter);
    const std::string cut = "clip [M 15,15 L 35,15 L 35,35 L 15,35 Z]";
    const std::string drawing = "fill [M 5,5 L 105,5 L 105,105 L 5,105 Z] #000000FF";
    const std::string childFill = "fill [M 5,5 L 25,5 L 25,25 L 5,25 Z] #0000FFFF";
    EXPECT_EQ(show(), (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]", cut, drawing, "unclip",
                             childFill, "unclip"}));
    painter->setClipsToBounds(true);
    EXPECT_EQ(show(), (Lines{"clip [M 5,5 L 35,5 L 35,35 L 5,35 Z]", cut, drawing, childFill,
                             "unclip", "unclip"}));
    painter->setNeedsDisplay({14, 14, 1, 1});
    EXPECT_EQ(show(), (Lines{"clip [M 33,33 L 35,33 L 35,35 L 33,35 Z]", drawing, "unclip"}))
        << "a part within the bounds needs no other clip";
    EXPECT_EQ(dirty, (Rects{{5, 5, 10, 10}, {5, 5, 10, 10}, {14, 14, 1, 1}}));
}

TEST_F(WindowDisplay, WhatDrawingMarksWaitsForTheNextFrame) {
    int drawings = 0;
    const auto painter = Painter::make({0, 0, 10, 10});
    painter->onDraw = [&](gfx::Context&, const gfx::Rect&) {
        if (++drawings < 3) painter->setNeedsDisplay();
        window().display();
    };
    root->addSubview(painter);
    window().display();
    EXPECT_EQ(drawings, 1);
    EXPECT_TRUE(window().needsDisplay());
    wait(1.0 / 60);
    EXPECT_EQ(drawings, 2);
    wait(10);
    EXPECT_EQ(drawings, 3);
    EXPECT_FALSE(loop().isBusy());
}

TEST_F(WindowDisplay, LaysOutBeforeItDrawsAndNeverEndlessly) {
    const auto painter = Painter::make({0, 0, 40, 40});
    const auto child = View::initWithFrame({});
    child->setBackgroundColor(blue);
    int layouts = 0;
    painter->onLayout = [&] {
        ++layouts;
        child->setFrame({0, 0, painter->bounds().size.width / 2, 10});
    };
    painter->addSubview(child);
    root->addSubview(painter);
    show();
    EXPECT_EQ(child->frame(), gfx::Rect(0, 0, 20, 10));
    EXPECT_EQ(layouts, 1);
    painter->setFrame({20, 0, 40, 40});
    show();
    EXPECT_EQ(layouts, 1) << "nothing was resized";
    painter->setFrame({20, 0, 60, 40});
    show();
    EXPECT_EQ(child->frame(), gfx::Rect(0, 0, 30, 10));

    painter->onLayout = [&] {
        ++layouts;
        painter->setNeedsLayout();
    };
    painter->setNeedsLayout();
    layouts = 0;
    show();
    EXPECT_GT(layouts, 1);
    EXPECT_LT(layouts, 20);
}

TEST_F(WindowDisplay, AChangeOutsideOfAnyEventShowsAtTheNextTick) {
    const auto view = addView({0, 0, 10, 10});
    show();
    window().takeDrawn();
    loop().advanceTo(0.51);
    view->setFrame({50, 0, 10, 10});
    loop().advanceTo(0.516);
    EXPECT_EQ(window().takeDrawn(), Rects());
    loop().advanceTo(0.517);
    EXPECT_EQ(window().takeDrawn(), (Rects{{0, 0, 10, 10}, {50, 0, 10, 10}}));
}

// A device that has no surfaces left.
class ExhaustedDevice : public test::RecordingDevice {
public:
    std::shared_ptr<gfx::Surface> makeSurface(gfx::Size, double, bool) override { return {}; }
};

TEST(WindowSurface, ADeviceWithoutASurfaceIsNotAskedForever) {
    test::TestHost host({.device = std::make_shared<ExhaustedDevice>()});
    host.window().display();
    EXPECT_EQ(host.window().surface(), nullptr);
    host.wait(1);
    EXPECT_FALSE(host.loop().isBusy());
}

TEST_F(WindowDisplay, FingersReportedTogetherAreOneFrame) {
    const auto view = addView({0, 0, 50, 50});
    show();
    const auto frames = window().frames();
    window().perform([&] {
        for (const gfx::ColorRef& color : {blue, gfx::makeColor(1, 0, 0), blue}) {
            view->setBackgroundColor(color);
            window().fingersBegan({{1, {10, 10}}});
        }
    });
    EXPECT_EQ(window().frames(), frames + 1);
}

}  // namespace

}  // namespace kalim::ui
