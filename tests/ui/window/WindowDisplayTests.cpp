#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/gfx/Context.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

using Lines = std::vector<std::string>;
using Rects = std::vector<gfx::Rect>;

const gfx::ColorRef red = gfx::makeColor(1, 0, 0);
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

// A window of 100 x 100 points on a device that records.
class Stage : public test::TestHost {
public:
    explicit Stage(double scale = 1)
        : TestHost({.scale = scale,
                    .size = {100, 100},
                    .device = std::make_shared<test::RecordingDevice>()}) {}

    std::shared_ptr<View> add(const gfx::Rect& frame, const gfx::ColorRef& color = red) {
        auto view = View::initWithFrame(frame);
        view->setBackgroundColor(color);
        window().rootView()->addSubview(view);
        return view;
    }
    // What the next display paints; the clip of each damaged rectangle and its clearing left out.
    Lines show() {
        window().display();
        Lines lines = test::RecordingDevice::recording(*window().surface()).takeLines();
        std::erase_if(lines, [](const std::string& line) { return line.ends_with("blend=clear"); });
        return lines;
    }
    // The pixels that the next display draws.
    Rects shown() {
        show();
        return window().takeDrawn();
    }
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

TEST(WindowDisplay, DrawsEverythingFirstAndThenNothing) {
    Stage stage(2);
    stage.add({10, 10, 20, 20});
    EXPECT_EQ(stage.window().surface(), nullptr);
    EXPECT_EQ(stage.show(),
              (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]",
                     "fill [M 10,10 L 30,10 L 30,30 L 10,30 Z] #FF0000FF", "unclip"}));
    EXPECT_EQ(stage.window().lastCost().pixels, 40000);
    EXPECT_EQ(stage.window().lastCost().views, 1);
    EXPECT_FALSE(stage.window().surface()->isOpaque());
    const auto surface = stage.window().surface();
    EXPECT_EQ(stage.window().takeDrawn(), Rects{gfx::Rect(0, 0, 200, 200)});

    EXPECT_FALSE(stage.window().needsDisplay());
    EXPECT_EQ(stage.show(), Lines());
    EXPECT_EQ(stage.window().takeDrawn(), Rects());
    EXPECT_EQ(stage.window().lastCost().pixels, 40000) << "a display without a frame costs nothing";

    stage.window().setSize({50, 60});
    EXPECT_EQ(stage.shown(), Rects{gfx::Rect(0, 0, 100, 120)});
    EXPECT_NE(stage.window().surface(), surface);
    EXPECT_EQ(stage.window().rootView()->frame(), gfx::Rect(0, 0, 50, 60));
}

TEST(WindowDisplay, EveryChangeDrawsTheOldAndTheNewPlaceAndNoMore) {
    Stage stage;
    const auto other = stage.add({60, 60, 30, 30}, blue);
    const auto view = stage.add({10, 10, 10, 10});
    const auto child = View::initWithFrame({20, 0, 5, 5});
    stage.shown();
    struct Case {
        const char* what;
        std::function<void()> change;
        Rects expected;
    };
    const Case cases[] = {
        {"a step",
         [&] {
             view->setCenter({18, 15});
         },
         {{10, 10, 13, 10}}},
        {"a leap",
         [&] {
             view->setFrame({80, 10, 10, 10});
         },
         {{13, 10, 10, 10}, {80, 10, 10, 10}}},
        {"move and resize",
         [&] {
             view->setFrame({10, 80, 2, 2});
         },
         {{80, 10, 10, 10}, {10, 80, 2, 2}}},
        {"back",
         [&] {
             view->setFrame({10, 10, 10, 10});
         },
         {{10, 80, 2, 2}, {10, 10, 10, 10}}},
        {"no change",
         [&] {
             view->setFrame({10, 10, 10, 10});
         },
         {}},
        {"hiding", [&] { view->setHidden(true); }, {{10, 10, 10, 10}}},
        {"moving unseen",
         [&] {
             view->setFrame({20, 10, 10, 10});
         },
         {}},
        {"showing", [&] { view->setHidden(false); }, {{20, 10, 10, 10}}},
        {"between pixels",
         [&] {
             view->setFrame({20.5, 10, 10, 10});
         },
         {{20, 10, 11, 10}}},
        {"scaling",
         [&] { view->setTransform(gfx::AffineTransform::scaling(1, 2)); },
         {{20, 5, 11, 20}}},
        {"unscaling", [&] { view->setTransform({}); }, {{20, 5, 11, 20}}},
        {"to whole pixels",
         [&] {
             view->setFrame({20, 10, 10, 10});
         },
         {{20, 10, 11, 10}}},
        {"a child outside", [&] { view->addSubview(child); }, {{40, 10, 5, 5}}},
        {"moved with its child",
         [&] {
             view->setCenter({25, 20});
         },
         {{20, 10, 25, 15}}},
        {"clipped", [&] { view->setClipsToBounds(true); }, {{20, 15, 25, 10}}},
        {"child moves unseen",
         [&] {
             child->setCenter({40, 3});
         },
         {}},
        {"scrolled into sight",
         [&] {
             view->setBounds({35, 0, 10, 10});
         },
         {{20, 15, 10, 10}}},
        {"a part",
         [&] {
             view->setNeedsDisplay({30, 8, 10, 10});
         },
         {{20, 23, 5, 2}}},
        {"same colour", [&] { view->setBackgroundColor(gfx::makeColor(1, 0, 0)); }, {}},
        {"other colour", [&] { view->setBackgroundColor(blue); }, {{20, 15, 10, 10}}},
        {"order", [&] { stage.window().rootView()->sendSubviewToBack(*view); }, {{20, 15, 10, 10}}},
        {"order as it is", [&] { stage.window().rootView()->sendSubviewToBack(*view); }, {}},
        {"beyond the window",
         [&] {
             other->setFrame({90, 60, 30, 30});
         },
         {{60, 60, 40, 30}}},
        {"removal", [&] { view->removeFromSuperview(); }, {{20, 15, 10, 10}}},
    };
    for (const Case& item : cases) {
        item.change();
        EXPECT_EQ(described(stage.shown()), described(item.expected)) << item.what;
    }
}

TEST(WindowDisplay, OnlyViewsThatMeetTheDamageDraw) {
    Stage stage(2);
    for (int i = 0; i < 10; ++i)
        stage.add({i * 10.0, 0, 10, 10});
    const auto mover = stage.add({0, 50, 5, 5}, blue);
    stage.show();
    mover->setFrame({12, 5, 5, 5});
    EXPECT_EQ(stage.show(), (Lines{"clip [M 0,50 L 5,50 L 5,55 L 0,55 Z]", "unclip",
                                   "clip [M 12,5 L 17,5 L 17,10 L 12,10 Z]",
                                   "fill [M 10,0 L 20,0 L 20,10 L 10,10 Z] #FF0000FF",
                                   "fill [M 12,5 L 17,5 L 17,10 L 12,10 Z] #0000FFFF", "unclip"}));
    EXPECT_EQ(stage.window().lastDamage(), (Rects{{0, 100, 10, 10}, {24, 10, 10, 10}}));
    EXPECT_EQ(stage.window().lastCost().pixels, 200);
    EXPECT_EQ(stage.window().lastCost().views, 2);
}

TEST(WindowDisplay, AlphaAppliesToAViewAsAWhole) {
    Stage stage;
    const auto plain = stage.add({0, 0, 10, 10});
    plain->setAlpha(0.5);
    const auto family = stage.add({50, 50, 20, 20});
    const auto child = View::initWithFrame({5, 5, 5, 5});
    child->setBackgroundColor(blue);
    family->addSubview(child);
    family->setAlpha(0.25);
    EXPECT_EQ(stage.show(),
              (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]",
                     "fill [M 0,0 L 10,0 L 10,10 L 0,10 Z] #FF0000FF alpha=0.5",
                     "begin group alpha=0.25", "fill [M 50,50 L 70,50 L 70,70 L 50,70 Z] #FF0000FF",
                     "fill [M 55,55 L 60,55 L 60,60 L 55,60 Z] #0000FFFF", "end group", "unclip"}));
    plain->setNeedsDisplay();
    EXPECT_EQ(stage.show(),
              (Lines{"clip [M 0,0 L 10,0 L 10,10 L 0,10 Z]",
                     "fill [M 0,0 L 10,0 L 10,10 L 0,10 Z] #FF0000FF alpha=0.5", "unclip"}))
        << "no group for what is not drawn";
    family->setAlpha(0);
    child->setNeedsDisplay();
    EXPECT_EQ(stage.show(), (Lines{"clip [M 50,50 L 70,50 L 70,70 L 50,70 Z]", "unclip"}));
}

TEST(WindowDisplay, DrawingIsCutAtTheBoundsAndSubviewsWhereTheViewClips) {
    Stage stage;
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
    stage.window().rootView()->addSubview(painter);
    const std::string cut = "clip [M 15,15 L 35,15 L 35,35 L 15,35 Z]";
    const std::string drawing = "fill [M 5,5 L 105,5 L 105,105 L 5,105 Z] #000000FF";
    const std::string childFill = "fill [M 5,5 L 25,5 L 25,25 L 5,25 Z] #0000FFFF";
    EXPECT_EQ(stage.show(), (Lines{"clip [M 0,0 L 100,0 L 100,100 L 0,100 Z]", cut, drawing,
                                   "unclip", childFill, "unclip"}));
    painter->setClipsToBounds(true);
    EXPECT_EQ(stage.show(), (Lines{"clip [M 5,5 L 35,5 L 35,35 L 5,35 Z]", cut, drawing, childFill,
                                   "unclip", "unclip"}));
    painter->setNeedsDisplay({14, 14, 1, 1});
    EXPECT_EQ(stage.show(), (Lines{"clip [M 33,33 L 35,33 L 35,35 L 33,35 Z]", drawing, "unclip"}))
        << "a part within the bounds needs no other clip";
    EXPECT_EQ(dirty, (Rects{{5, 5, 10, 10}, {5, 5, 10, 10}, {14, 14, 1, 1}}));
}

TEST(WindowDisplay, WhatDrawingMarksWaitsForTheNextFrame) {
    Stage stage;
    int drawings = 0;
    const auto painter = Painter::make({0, 0, 10, 10});
    painter->onDraw = [&](gfx::Context&, const gfx::Rect&) {
        if (++drawings < 3) painter->setNeedsDisplay();
        stage.window().display();
    };
    stage.window().rootView()->addSubview(painter);
    stage.window().display();
    EXPECT_EQ(drawings, 1);
    EXPECT_TRUE(stage.window().needsDisplay());
    stage.wait(1.0 / 60);
    EXPECT_EQ(drawings, 2);
    stage.wait(10);
    EXPECT_EQ(drawings, 3);
    EXPECT_FALSE(stage.loop().isBusy());
}

TEST(WindowDisplay, LaysOutBeforeItDrawsAndNeverEndlessly) {
    Stage stage;
    const auto painter = Painter::make({0, 0, 40, 40});
    const auto child = View::initWithFrame({});
    child->setBackgroundColor(red);
    int layouts = 0;
    painter->onLayout = [&] {
        ++layouts;
        child->setFrame({0, 0, painter->bounds().size.width / 2, 10});
    };
    painter->addSubview(child);
    stage.window().rootView()->addSubview(painter);
    stage.show();
    EXPECT_EQ(child->frame(), gfx::Rect(0, 0, 20, 10));
    EXPECT_EQ(layouts, 1);
    painter->setFrame({20, 0, 40, 40});
    stage.show();
    EXPECT_EQ(layouts, 1) << "nothing was resized";
    painter->setFrame({20, 0, 60, 40});
    stage.show();
    EXPECT_EQ(child->frame(), gfx::Rect(0, 0, 30, 10));

    painter->onLayout = [&] {
        ++layouts;
        painter->setNeedsLayout();
    };
    painter->setNeedsLayout();
    layouts = 0;
    stage.show();
    EXPECT_GT(layouts, 1);
    EXPECT_LT(layouts, 20);
}

TEST(WindowDisplay, AChangeOutsideOfAnyEventShowsAtTheNextTick) {
    Stage stage;
    const auto view = stage.add({0, 0, 10, 10});
    stage.shown();
    stage.loop().advanceTo(0.51);
    view->setFrame({50, 0, 10, 10});
    stage.loop().advanceTo(0.516);
    EXPECT_EQ(stage.window().takeDrawn(), Rects());
    stage.loop().advanceTo(0.517);
    EXPECT_EQ(stage.window().takeDrawn(), (Rects{{0, 0, 10, 10}, {50, 0, 10, 10}}));
}

// A device that has no surfaces left.
class ExhaustedDevice : public test::RecordingDevice {
public:
    std::shared_ptr<gfx::Surface> makeSurface(gfx::Size, double, bool) override { return {}; }
};

TEST(WindowDisplay, ADeviceWithoutASurfaceIsNotAskedForever) {
    test::TestHost host({.device = std::make_shared<ExhaustedDevice>()});
    host.window().display();
    EXPECT_EQ(host.window().surface(), nullptr);
    host.wait(1);
    EXPECT_FALSE(host.loop().isBusy());
}

TEST(WindowDisplay, ComposesATranslucentFamilyOverNothing) {
    test::TestHost host({.size = {30, 10}});
    const auto family = View::initWithFrame({0, 0, 20, 10});
    family->setBackgroundColor(red);
    family->setAlpha(0.5);
    const auto child = View::initWithFrame({10, 0, 10, 10});
    child->setBackgroundColor(blue);
    family->addSubview(child);
    host.window().rootView()->addSubview(family);
    const auto pixel = [&host](int x) {
        host.window().display();
        return host.window().surface()->makeImage()->pixels()->colorAt(x, 5).hex();
    };
    EXPECT_EQ(pixel(5), "#FF000080");
    EXPECT_EQ(pixel(15), "#0000FF80") << "nothing of the red under it";
    EXPECT_EQ(pixel(25), "#00000000");
    child->removeFromSuperview();
    EXPECT_EQ(pixel(15), "#FF000080") << "drawn anew, not over what was there";
}

TEST(WindowDisplay, FingersReportedTogetherAreOneFrame) {
    Stage stage;
    const auto view = stage.add({0, 0, 50, 50});
    stage.show();
    const auto frames = stage.window().frames();
    stage.window().perform([&] {
        for (const gfx::ColorRef& color : {blue, red, blue}) {
            view->setBackgroundColor(color);
            stage.window().fingersBegan({{1, {10, 10}}});
        }
    });
    EXPECT_EQ(stage.window().frames(), frames + 1);
}

}  // namespace

}  // namespace kalim::ui
