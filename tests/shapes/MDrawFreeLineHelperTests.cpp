#include "kalimkit/shapes/MDrawFreeLineHelper.h"

#include <gtest/gtest.h>

#include "kalimkit/tool/FixedText.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using Lines = std::vector<std::string>;

// Writes messages down: the mask's alpha of what changes, the strokes of what is complete.
class Receiver : public MDrawFreeLineHelperDelegate {
public:
    void drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& freeline) override {
        const bool isFinished = freeline->finalized() && !freeline->isNewBuild();
        lines.push_back(std::to_string(freeline->linePoints().size()) +
                        (isFinished ? " strokes done" : " strokes unfinished"));
        if (dropped) dropped->reset();
    }
    void drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>& freeline) override {
        lines.push_back(freeline ? fixedText(freeline->maskColor()->alpha, 3) : "none");
    }
    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
    // Let go at the completion.
    std::shared_ptr<MDrawFreeLineHelper>* dropped = nullptr;
};

class MDrawFreeLineHelperTest : public testing::Test {
protected:
    MDrawFreeLineHelperTest() { helper->setDelegate(receiver); }

    std::shared_ptr<MDrawFreeline> stroke(int points) {
        const auto line = helper->freelineTool();
        if (!line->color()) line->setColor(gfx::makeColor(1, 0, 0));
        for (int i = 1; i < points; ++i)
            line->drawMove({i * 10.0, 40});
        line->drawUp({0, 0});
        helper->drawPause();
        return line;
    }

    test::TestHost host;
    std::shared_ptr<Receiver> receiver = std::make_shared<Receiver>();
    std::shared_ptr<MDrawFreeLineHelper> helper = MDrawFreeLineHelper::init();
};

TEST_F(MDrawFreeLineHelperTest, FadesInAtEveryThirdFrameAndFinishesWithTheSixteenthStep) {
    stroke(6);
    host.wait(0.049);
    EXPECT_EQ(receiver->take(), Lines{});
    host.wait(0.101);
    EXPECT_EQ(receiver->take(), (Lines{"0.400", "0.433", "0.466"}));
    host.wait(0.649);
    EXPECT_EQ(receiver->take().back(), "0.862");
    host.wait(0.001);
    EXPECT_EQ(receiver->take(), (Lines{"1 strokes done", "none"}));
    EXPECT_FALSE(helper->isFreelineDrawing());
    EXPECT_FALSE(host.loop().isBusy());
}

TEST_F(MDrawFreeLineHelperTest, AStrokeDuringTheFadeJoinsTheDrawingAndStartsTheFadeAnew) {
    const auto line = stroke(6);
    EXPECT_TRUE(helper->firstFreelinPart());
    host.wait(0.7);
    receiver->take();
    EXPECT_EQ(helper->freelineTool(), line);
    EXPECT_FALSE(helper->firstFreelinPart());
    EXPECT_EQ(line->maskColor()->alpha, 0.4);
    host.wait(2);
    EXPECT_EQ(receiver->take(), Lines{});
    // A stroke this short is no hindrance: the drawing as a whole is valid.
    stroke(2);
    host.wait(0.79);
    EXPECT_TRUE(helper->isFreelineDrawing());
    host.wait(0.01);
    EXPECT_EQ(receiver->take().at(15), "2 strokes done");
    EXPECT_TRUE(helper->firstFreelinPart());
}

TEST_F(MDrawFreeLineHelperTest, FivePointsWaitUntilTheyAreResetAndWithoutAFadeSixAreDoneAtOnce) {
    auto line = stroke(5);
    host.wait(3);
    EXPECT_TRUE(helper->isFreelineDrawing());
    helper->reset();
    EXPECT_FALSE(helper->isFreelineDrawing());
    EXPECT_TRUE(line->finalized() && !line->isNewBuild());
    EXPECT_EQ(receiver->take(), Lines{});
    stroke(6);
    helper->reset();
    EXPECT_FALSE(host.loop().isBusy()) << "a reset ends a fade, too";
    helper->setEnable(false);
    line = stroke(6);
    EXPECT_EQ(receiver->take(), Lines{"1 strokes done"});
    EXPECT_EQ(line->maskColor()->alpha, 1);
    EXPECT_FALSE(helper->isFreelineDrawing());
}

TEST_F(MDrawFreeLineHelperTest, MayBeLetGoByTheReceiverOfItsMessage) {
    receiver->dropped = &helper;
    stroke(6);
    host.wait(1);
    EXPECT_EQ(helper, nullptr);
    EXPECT_EQ(receiver->take().back(), "none");
}

}  // namespace
}  // namespace kalim
