#include "kalimkit/shapes/MDrawMeasurementInfo.h"

#include <gtest/gtest.h>

#include <string>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MeasureText.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

// Letters of 14 points are 7 wide here, lines 15.4 high.
TEST(MDrawMeasurementInfo, StandsAboveItsShapeOnAPlate) {
    const test::TestHost host({1, {390, 844}, std::make_shared<test::RecordingDevice>()});
    resetMeasureLabels();
    auto box = MDrawRect::initWithStartPoint({100, 200});
    box->setEndPoint({200, 250});
    const auto label = MDrawMeasurementInfo::initWithTool(box);
    test::RecordingContext context;
    label->drawContent(context);
    const std::vector<std::string> expected = {
        "fill [M 77,123.8 L 223,123.8 L 223,190 L 77,190 Z] #FFFFFF80",
        "text \"Width: 100.00 px\" at=(87,145) size=14 #000000FF",
        "text \"Height: 50.00 px\" at=(87,160.4) size=14 #000000FF",
        "text \"Area: 5000.00 sqpx\" at=(87,175.8) size=14 #000000FF"};
    EXPECT_EQ(context.takeLines(), expected);

    const gfx::Rect plate = label->labelExtent();
    EXPECT_DOUBLE_EQ(plate.minY(), 123.8);
    EXPECT_EQ(plate.size.width, 146);
    box->setStartPoint({110, 210});
    box->setEndPoint({210, 260});
    EXPECT_DOUBLE_EQ(label->labelExtent().minY(), 133.8);
    box->setEndPoint({1110, 260});
    EXPECT_EQ(label->labelExtent().size.width, 153);
    box = nullptr;
    EXPECT_EQ(label->labelExtent(), gfx::Rect());
    label->drawContent(context);
    EXPECT_TRUE(context.takeLines().empty());
}

TEST(MDrawMeasurementInfo, RefusesToBeMadeWithoutATool) {
    EXPECT_THROW(MDrawMeasurementInfo::init(), ProgrammingError);
    std::string told;
    const RaiseHandler before = setRaiseHandler(
        [&](const std::string& name, const std::string& reason) { told = name + ": " + reason; });
    const auto label = MDrawMeasurementInfo::init();
    setRaiseHandler(before);
    EXPECT_EQ(label, nullptr);
    EXPECT_EQ(told, "InitException: Should call initWithTool to create an instance.");
}

}  // namespace
}  // namespace kalim
