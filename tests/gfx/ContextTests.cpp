#include "kalimkit/gfx/Context.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/support/RecordingDevice.h"

namespace kalim::gfx {
namespace {

using Lines = std::vector<std::string>;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class ContextTest : public testing::Test {
protected:
    test::RecordingContext context;
    test::RecordingDevice device;
    ImageRef image = device.makeImage(Bitmap(20, 10), 2, ImageOrientation::Up);
};

TEST_F(ContextTest, PointsTakeTheTransformOfTheirMomentThePenThatOfTheStroke) {
    context.moveTo({1, 1});
    context.translate(10, 0);
    context.lineTo({1, 1});
    context.scale(2, 3);
    context.lineTo({1, 1});
    context.setLineWidth(4);
    context.setLineCap(LineCap::Round);
    context.stroke();
    EXPECT_EQ((Lines{"stroke [M 1,1 L 11,1 L 12,3] #000000FF width=4 cap=round pen=[2 0 0 3]"}),
              context.lines());
}

TEST_F(ContextTest, ArcContinuesThePathInTransformedSpaceAndPaintingConsumesIt) {
    context.translate(100, 0);
    context.moveTo({0, 0});
    context.addArc({10, 0}, 0, 0, 1, false);
    context.addArc({20, 10}, 10, -std::numbers::pi / 2, 0, false);
    context.fill();
    context.fill();
    context.stroke();
    context.moveTo({50, 50});
    context.fillRect({-98, 2, 1, 1});
    context.stroke();
    EXPECT_EQ((Lines{"fill [M 100,0 L 110,0 L 120,0 C 125.52,0 130,4.48 130,10] #000000FF",
                     "fill [M 2,2 L 3,2 L 3,3 L 2,3 Z] #000000FF"}),
              context.lines());
}

TEST_F(ContextTest, WhatIsNotFiniteOrHasNoAreaNeverReachesTheBackend) {
    context.moveTo({notANumber, 0});
    context.lineTo({0, infinity});
    context.quadTo({notANumber, 0}, {1, 1});
    context.cubicTo({0, 0}, {0, notANumber}, {1, 1});
    context.addArc({0, 0}, notANumber, 0, 1, false);
    context.addArc({0, 0}, 1, 0, infinity, false);
    context.addEllipse({0, 0, infinity, 1});
    context.fill();
    context.fillRect({0, notANumber, 1, 1});
    context.clipToRect({0, 0, notANumber, 1});
    context.drawText("a", {notANumber, 0}, {});
    context.drawText("a", {0, 0}, {.family = "", .size = notANumber});
    context.drawImage(*image, {0, 0, notANumber, 1});
    context.save();
    // Finite, but not after the transform.
    context.scale(1e200, 1);
    context.fillRect({0, 0, 1e200, 1});
    context.restore();
    EXPECT_EQ(Lines{}, context.takeLines());
    context.concat({notANumber, 0, 0, 1, 0, 0});
    context.setLineWidth(notANumber);
    context.setLineWidth(-1);
    context.setAlpha(notANumber);
    context.setShadow({{0, notANumber}, 1, {}});
    context.setFillPattern({image, AffineTransform::scaling(0, 1)});
    context.setFillPattern({nullptr, {}});
    context.fillRect({0, 0, 1, 1});
    EXPECT_TRUE(context.transform().isIdentity());
    EXPECT_EQ(1, context.state().lineWidth);
    EXPECT_EQ((Lines{"fill [M 0,0 L 1,0 L 1,1 L 0,1 Z] #000000FF"}), context.lines());
    // Nor does anything through a transform without area.
    context.takeLines();
    context.scale(0, 1);
    context.strokeRect({0, 0, 10, 10});
    context.drawText("a", {0, 0}, {});
    context.drawRaster(*image, {0, 0, 10, 10});
    EXPECT_EQ(Lines{}, context.lines());
}

TEST_F(ContextTest, RestoreBringsBackEverythingAndNeedsItsSave) {
    context.restore();
    context.setFillColor({1, 0, 0, 1});
    context.save();
    context.setFillPattern({image, {}});
    context.setShadow({{1, 2}, -3, {0, 0, 0, 0.5}});
    context.setAlpha(7);
    context.setBlendMode(BlendMode::Copy);
    context.translate(5, 5);
    context.clipToRect({0, 0, 2, 2});
    context.fillRect({0, 0, 1, 1});
    context.restore();
    context.fillRect({0, 0, 1, 1});
    EXPECT_EQ((Lines{"clip [M 5,5 L 7,5 L 7,7 L 5,7 Z]",
                     "fill [M 5,5 L 6,5 L 6,6 L 5,6 Z] pattern=20x10@2 blend=copy shadow=(1,2) "
                     "blur=0 #00000080",
                     "unclip", "fill [M 0,0 L 1,0 L 1,1 L 0,1 Z] #FF0000FF"}),
              context.lines());
}

TEST_F(ContextTest, ClipBoundsFollowTheClipThroughTransformsAndRestores) {
    EXPECT_TRUE(context.clipBounds().contains(Rect(-1e6, -1e6, 2e6, 2e6)));
    context.clipToRect({10, 10, 100, 50});
    context.clipToRect({0, 20, 30, 100});
    EXPECT_EQ(context.clipBounds(), Rect(10, 20, 20, 40));
    context.save();
    context.translate(10, 20);
    context.scale(2, 4);
    EXPECT_EQ(context.clipBounds(), Rect(0, 0, 10, 10));
    context.beginTransparencyGroup();
    context.addEllipse({0, 0, 4, 2});
    context.clip();
    EXPECT_EQ(context.clipBounds(), Rect(0, 0, 4, 2));
    context.endTransparencyGroup();
    context.concat({0, 1, -1, 0, 0, 0});
    EXPECT_EQ(context.clipBounds(), Rect(0, -10, 10, 10));
    context.scale(0, 1);
    EXPECT_TRUE(context.clipBounds().isEmpty());
    context.restore();
    context.clipToRect({200, 200, 10, 10});
    EXPECT_TRUE(context.clipBounds().isEmpty());
    context.clipToRect({0, 0, 400, 400});
    EXPECT_TRUE(context.clipBounds().isEmpty());
}

TEST_F(ContextTest, PatternStaysWhereItWasSet) {
    context.translate(3, 4);
    context.setFillPattern({image, AffineTransform::scaling(2, 2), Interpolation::None});
    context.translate(100, 100);
    context.fillRect({0, 0, 1, 1});
    context.setFillColor({0, 0, 1, 1});
    context.fillRect({0, 0, 1, 1});
    EXPECT_EQ((Lines{"fill [M 103,104 L 104,104 L 104,105 L 103,105 Z] pattern=20x10@2 "
                     "transform=[2 0 0 2 3 4] interpolation=none",
                     "fill [M 103,104 L 104,104 L 104,105 L 103,105 Z] #0000FFFF"}),
              context.lines());
}

TEST_F(ContextTest, GroupStartsAfreshAndEndsWithWhatWasLeftOpen) {
    context.setAlpha(0.5);
    context.setShadow({{1, 1}, 2, {0, 0, 0, 1}});
    context.endTransparencyGroup();
    context.beginTransparencyGroup();
    context.save();
    context.translate(5, 0);
    context.beginTransparencyGroup();
    context.restore();
    context.setAlpha(0.25);
    context.fillRect({0, 0, 1, 1});
    context.save();
    context.endTransparencyGroup();
    context.fillRect({0, 0, 1, 1});
    context.endTransparencyGroup();
    context.fillRect({0, 0, 1, 1});
    EXPECT_EQ((Lines{"begin group alpha=0.5 shadow=(1,1) blur=2 #000000FF", "begin group",
                     "fill [M 5,0 L 6,0 L 6,1 L 5,1 Z] #000000FF alpha=0.25", "end group",
                     "fill [M 5,0 L 6,0 L 6,1 L 5,1 Z] #000000FF", "end group",
                     "fill [M 0,0 L 1,0 L 1,1 L 0,1 Z] #000000FF alpha=0.5 shadow=(1,1) blur=2 "
                     "#000000FF"}),
              context.lines());
}

TEST_F(ContextTest, ImagesAreTurnedByTheTransformAlone) {
    context.drawImage(*image, {3, 4, 30, 15});
    const Image turned(image->raster(), 1, ImageOrientation::Right);
    context.drawImage(turned, {3, 4, 15, 30});
    EXPECT_TRUE(context.transform().isIdentity());
    context.drawRaster(turned, {0, 0, 1, 1});
    context.drawImage(*image, {3, 4, 0, 15});
    EXPECT_EQ((Lines{"raster 20x10@2 rect=(3,4,30,15)",
                     "raster 20x10@1 rect=(0,0,30,15) transform=[0 1 -1 0 18 4]",
                     "raster 20x10@1 rect=(0,0,1,1)"}),
              context.lines());
}

TEST_F(ContextTest, TextIsFilledOrOutlined) {
    context.setFillColor({1, 0, 0, 1});
    context.drawText("ab", {1, 2}, {.family = "", .size = 20, .bold = true});
    context.setTextMode(TextMode::Stroke);
    context.setLineWidth(3);
    context.drawText("ab", {1, 2}, {});
    context.setLineWidth(0);
    context.drawText("ab", {1, 2}, {});
    context.drawText("", {1, 2}, {});
    EXPECT_EQ((Lines{"text \"ab\" at=(1,2) size=20 bold #FF0000FF",
                     "outline \"ab\" at=(1,2) size=14 #000000FF width=3"}),
              context.lines());
}

}  // namespace
}  // namespace kalim::gfx
