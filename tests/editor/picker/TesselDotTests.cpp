#include "kalimkit/editor/picker/TesselDot.h"

#include <gtest/gtest.h>

#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/Pens.h"
#include "tests/support/RecordingContext.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

using Keys = std::vector<std::string>;

class TesselDotTest : public testing::Test {
protected:
    // Paint and pen of every call that draws a dot; the icon's raster is left out.
    static std::string drawn(TesselDot& dot) {
        test::RecordingContext context;
        dot.renderIn(context);
        std::string all;
        for (const std::string& line : context.lines()) {
            if (line.rfind("fill", 0) != 0 && line.rfind("stroke", 0) != 0) continue;
            all += line.substr(0, line.find(' ')) + line.substr(line.find(']') + 1) + "; ";
        }
        return all;
    }

    test::TestHost host{{1, {390, 844}, std::make_shared<test::RecordingDevice>()}};
};

}  // namespace

TEST_F(TesselDotTest, DrawsItsFillingAndItsOutline) {
    const auto color = [](const char* hex) {
        return TesselDot::initWithColorShowBorder(colorWithHexString(hex), false);
    };
    const struct {
        std::shared_ptr<TesselDot> dot;
        const char* plain;
        const char* selected;
    } cases[] = {
        {color("F63434"), "fill #F63434FF; ",
         "fill #F63434FF; stroke #FFFFFFFF width=2.5; stroke #00000029 width=1; "},
        {color("000000"), "fill #000000FF; stroke #FFFFFF99 width=1; ",
         "fill #000000FF; stroke #FFFFFFFF width=2.5; stroke #00000029 width=1; "},
        {TesselDot::initWithSize(1), "fill #2626264D; fill #FFFFFFFF; stroke #FFFFFF99 width=1; ",
         "fill #2626264D; fill #FFFFFFFF; stroke #FFFFFFFF width=2.5; "},
        // The ring layer of a pen is white too.
        {TesselDot::initWithPen(6), "fill #262626CC; stroke #FFFFFF99 width=1; ",
         "fill #262626CC; stroke #FFFFFFFF width=2.5; stroke #FFFFFFFF width=2.5; "},
        {TesselDot::initWithShape(1), "fill #262626CC; stroke #FFFFFF99 width=1; ",
         "fill #262626CC; stroke #FFFFFFFF width=2.5; "},
    };
    for (const auto& [dot, plain, selected] : cases) {
        EXPECT_EQ(dot->frame(), gfx::Rect(0, 0, 38, 38));
        EXPECT_EQ(drawn(*dot), plain);
        dot->setSelect(true);
        EXPECT_EQ(drawn(*dot), selected);
        dot->setSelect(false);
        EXPECT_EQ(drawn(*dot), plain);
    }
}

TEST_F(TesselDotTest, HasTheDiameterOrTheIconOfWhatItStandsFor) {
    const double diameters[] = {6, 10, 16, 22, 28};
    const auto dot = TesselDot::initWithSize(0);
    for (unsigned size = 0; size < 5; ++size) {
        dot->setSize(size);
        EXPECT_EQ(dot->dotSize(), diameters[size]);
    }
    EXPECT_EQ(TesselDot::initWithSize(5)->dotSize(), 0);
    EXPECT_EQ(TesselDot::initWithPen(1)->dotSize(), 38);
    EXPECT_EQ(dot->iconImage(), nullptr);
    const auto pen = TesselDot::initWithPen(0);
    for (const Pen& each : pens()) {
        pen->setPen(each.number);
        const std::string icon(each.icon);
        EXPECT_EQ(frameworkImageName(pen->iconImage()), "icon_tool_" + icon);
        if (!each.shape) continue;
        EXPECT_EQ(frameworkImageName(TesselDot::initWithShape(*each.shape)->iconImage()),
                  "icon_tool_shape_" + icon);
    }
}

TEST_F(TesselDotTest, OnlyAChangeOfTheSelectionIsAnimated) {
    const auto dot = TesselDot::initWithPen(6);
    host.window().rootView()->addSubview(dot);
    host.window().display();
    dot->setSelect(true);
    EXPECT_EQ(dot->runningAnimationKeys(), Keys{"IN_SELECTING_ANIME"});
    host.wait(0.1);
    dot->setSelect(false);
    EXPECT_EQ(dot->runningAnimationKeys(), Keys{"OUT_SELECTING_ANIME"});
    host.wait(1);
    EXPECT_EQ(dot->runningAnimationKeys(), Keys{});
    dot->setSelect(false);
    EXPECT_EQ(dot->runningAnimationKeys(), Keys{});
    EXPECT_FALSE(host.loop().isBusy()) << "a still dot costs nothing";
}

}  // namespace kalim
