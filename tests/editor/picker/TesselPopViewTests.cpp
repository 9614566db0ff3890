#include "kalimkit/editor/picker/TesselPopView.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

class Delegate : public TesselPopDelegate {
public:
    void clickDotWithConfig(const std::shared_ptr<TesselConfig>& config) override {
        heard += "size " + std::to_string(config->size()) + " ";
    }
    void clickAtPop(TesselPopView& row) override {
        heard += "pop " + std::to_string(row.tag()) + " ";
        whenTapped(row);
    }
    std::string heard;
    std::function<void(TesselPopView&)> whenTapped = [](TesselPopView&) {};
};

std::shared_ptr<TesselPopView> makeRow(int direction) {
    std::vector<std::shared_ptr<TesselDot>> dots;
    for (unsigned size = 0; size < 5; ++size)
        dots.push_back(TesselDot::initWithSize(size));
    return TesselPopView::initWithArraysDirection(dots, direction);
}

// Five dots at (20, 100), 12 apart: the middle of dot i is at (39 + 50 i, 119).
class TesselPopViewTest : public testing::Test {
protected:
    TesselPopViewTest() {
        row->setFrame({20, 100, 254, 38});
        row->setStaticPadding(12);
        row->setSelectIndex(1);
        row->setTag(22);
        row->setDelegate(delegate);
        host.window().rootView()->addSubview(row);
        host.window().display();
    }
    std::string heardAfterTap(gfx::Point p) {
        test::Finger(host.window()).tap(p);
        return std::exchange(delegate->heard, {});
    }
    void fold(bool fold) {
        row->setIsFold(fold);
        host.wait(1);
    }
    // Of the dots in order, as displayed: place and alpha.
    std::string shown() const {
        std::string all;
        for (const auto& dot : row->views()) {
            char text[64];
            std::snprintf(text, sizeof text, "%.0f/%.2f ", dot->shownFrame().minX(),
                          dot->shownAlpha());
            all += text;
        }
        return all;
    }

    test::TestHost host{{1, {390, 844}, std::make_shared<test::RecordingDevice>()}};
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
    std::shared_ptr<TesselPopView> row = makeRow(1);
};

}  // namespace

TEST_F(TesselPopViewTest, IsAsLargeAsItsDotsNeed) {
    EXPECT_EQ(makeRow(1)->frame().size, (gfx::Size{254, 38})) << "16 apart at first";
    EXPECT_EQ(makeRow(0)->frame().size, (gfx::Size{38, 254}));
    EXPECT_EQ(TesselPopView::initWithArrays({})->frame().size.height, 0);
    EXPECT_EQ(row->frame(), gfx::Rect(20, 100, 238, 38));
    row->setIsFold(true);
    EXPECT_EQ(row->frame(), gfx::Rect(20, 100, 38, 38));
    row->setStaticPadding(20);
    EXPECT_EQ(row->padding(), -38) << "it stays folded";
    row->setIsFold(false);
    EXPECT_EQ(row->frame().size.width, 270);
    EXPECT_EQ(row->views().at(4)->tag(), 4);
}

TEST_F(TesselPopViewTest, FoldsIntoTheSelectedDotInThreeTenths) {
    row->setIsFold(true);
    EXPECT_EQ(shown(), "0/1.00 50/1.00 100/1.00 150/1.00 200/1.00 ");
    host.wait(0.15);
    EXPECT_EQ(shown(), "0/0.51 25/1.00 50/0.51 75/0.51 100/0.51 ");
    EXPECT_TRUE(row->isAnimating());
    host.wait(0.16);
    EXPECT_EQ(shown(), "0/0.01 0/1.00 0/0.01 0/0.01 0/0.01 ");
    EXPECT_FALSE(row->isAnimating());
    row->setSelectIndex(3);
    EXPECT_EQ(shown(), "0/0.00 0/0.00 0/0.00 0/1.00 0/0.00 ");
    fold(false);
    EXPECT_EQ(shown(), "0/1.00 50/1.00 100/1.00 150/1.00 200/1.00 ");
}

TEST_F(TesselPopViewTest, SelectsOneDotAndIgnoresWhatIsNotThere) {
    for (const int index : {3, 3, -1, 5}) {
        row->setSelectIndex(index);
        EXPECT_EQ(row->selectIndex(), 3);
        for (const auto& dot : row->views())
            EXPECT_EQ(dot->select(), dot->tag() == 3);
    }
    host.wait(1);
    row->setSelectIndex(3);
    EXPECT_TRUE(row->views().at(3)->runningAnimationKeys().empty());
}

TEST_F(TesselPopViewTest, TellsWhatIsTapped) {
    EXPECT_EQ(heardAfterTap({139, 119}), "size 2 pop 22 ");
    EXPECT_EQ(row->selectIndex(), 2);
    EXPECT_EQ(heardAfterTap({64, 119}), "") << "between two dots";
    row->setEnable(false);
    EXPECT_LT(row->alpha(), 1);
    EXPECT_EQ(heardAfterTap({39, 119}), "");
    row->setEnable(true);
    EXPECT_EQ(row->alpha(), 1);
    fold(true);
    EXPECT_EQ(heardAfterTap({39, 119}), "pop 22 ");
    EXPECT_EQ(row->selectIndex(), 2) << "the dots under the selected one are not touched";
    row->setDelegate({});
    fold(false);
    EXPECT_EQ(heardAfterTap({239, 119}), "");
    EXPECT_EQ(row->selectIndex(), 2);
}

TEST_F(TesselPopViewTest, KeepsTouchesForItselfWhileItMoves) {
    const auto hit = [this](double x) { return host.window().rootView()->hitTest({x, 119}); };
    row->setIsFold(true);
    EXPECT_EQ(hit(39), row);
    EXPECT_EQ(hit(89), host.window().rootView());
    host.wait(1);
    EXPECT_EQ(hit(39), row->views().at(1));
}

TEST_F(TesselPopViewTest, DelegateMayLetGoOfTheRow) {
    delegate->whenTapped = [this](TesselPopView&) {
        row->removeFromSuperview();
        row.reset();
    };
    EXPECT_EQ(heardAfterTap({139, 119}), "size 2 pop 22 ");
    EXPECT_EQ(row, nullptr);
}

}  // namespace kalim
