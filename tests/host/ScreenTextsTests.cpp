#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/theme/Languages.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/desk/DeskButton.h"
#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::test {

namespace {

// Draws with Cairo and notes what texts are cut short: their ellipsis is measured first, and then
// the text.
class WatchingDevice : public gfx::Device {
public:
    std::vector<std::string> takeCut() { return std::exchange(_cut, {}); }

    std::shared_ptr<gfx::Surface> makeSurface(gfx::Size size, double scale, bool opaque) override {
        return _device->makeSurface(size, scale, opaque);
    }
    gfx::ImageRef makeImage(gfx::Bitmap bitmap, double scale,
                            gfx::ImageOrientation orientation) override {
        return _device->makeImage(std::move(bitmap), scale, orientation);
    }
    std::vector<double> advances(std::string_view text, const gfx::Font& font) override {
        if (std::exchange(_isCutting, text == ui::AlignedText::ellipsis)) _cut.emplace_back(text);
        return _device->advances(text, font);
    }
    gfx::LineMetrics lineMetrics(const gfx::Font& font) override {
        return _device->lineMetrics(font);
    }
    std::vector<std::size_t> boundaries(std::string_view text, gfx::TextBoundary kind) override {
        return _device->boundaries(text, kind);
    }
    gfx::TextDirections directions(std::string_view paragraph, gfx::BaseDirection base) override {
        return _device->directions(paragraph, base);
    }

private:
    std::shared_ptr<gfx::CairoDevice> _device = gfx::CairoDevice::make();
    bool _isCutting = false;
    std::vector<std::string> _cut;
};

// An editor on a narrow screen, in a language.
class ScreenTextsTest : public testing::TestWithParam<std::string> {
protected:
    ScreenTextsTest() {
        environment->setLanguage(GetParam());
        environment->setShowsAlerts(true);
        seat = std::make_unique<EditorSeat>(environment, gfx::Size{320, 568});
        const auto picture = device.makeImage(gfx::Bitmap(600, 400), 1, gfx::ImageOrientation::Up);
        seat->present(EditorSeat::makeEditor(picture, {}, {}));
        wait();
    }
    ~ScreenTextsTest() override { seat = nullptr; }

    void wait() {
        environment->wait(0.6);
        seat->show();
    }

    void drawArrow() {
        seat->remote()->choosePen(EditorPenArrow);
        ui::Window& window = seat->window();
        window.fingersBegan({{7, {120, 250}, {}}});
        window.fingersMoved({{7, {220, 320}, {}}});
        window.fingersEnded({{7, {220, 320}, {}}});
        wait();
    }

    // What was drawn since the last time has all of its texts, and all that can be pressed lies in
    // the window without lying on what stands beside it.
    void expectWhole(const std::string& screen) {
        wait();
        for (const std::string& text : device.takeCut())
            ADD_FAILURE() << GetParam() << ": " << screen << " cuts " << text;
    }

    void expectApart(const std::string& screen) {
        seat->accessibility().update();
        const auto& nodes = seat->accessibility().nodes();
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const gfx::Rect& frame = nodes[i].frame;
            if (nodes[i].role != ui::AccessibilityRole::Button) continue;
            EXPECT_TRUE(frame.minX() >= 0 && frame.maxX() <= 320)
                << GetParam() << ": " << screen << ": " << nodes[i].label;
            for (std::size_t j = 0; j < i; ++j) {
                const bool isBeside = nodes[j].role == ui::AccessibilityRole::Button &&
                                      nodes[j].parent == nodes[i].parent;
                EXPECT_FALSE(isBeside && frame.intersects(nodes[j].frame))
                    << GetParam() << ": " << screen << ": " << nodes[i].label << " and "
                    << nodes[j].label;
            }
        }
    }

    // What the page lays over the bar lies on nothing that can be pressed.
    void expectHostRoom() {
        seat->setHostRoom(24);
        wait();
        const gfx::Rect room = seat->hostRoom();
        EXPECT_TRUE(gfx::Rect({}, {320, 568}).contains(room)) << GetParam();
        seat->accessibility().update();
        for (const auto& node : seat->accessibility().nodes()) {
            EXPECT_FALSE(node.role == ui::AccessibilityRole::Button && node.frame.intersects(room))
                << GetParam() << ": " << node.label << " lies under what a page lays there";
        }
    }

    // A finger that rests once a pen was there may have fingers draw again.
    void drawWithFingersAgain() {
        const auto touch = [this](ui::TouchKind kind, double seconds) {
            const ui::Finger finger{8, {160, 300}, {.kind = kind}};
            seat->window().fingersBegan({finger});
            environment->wait(seconds);
            if (kind == ui::TouchKind::Finger) expectWhole("what a finger is offered");
            seat->window().fingersEnded({finger});
            environment->wait(0.6);
        };
        const auto overlay = ui::Overlay::in(seat->window());
        touch(ui::TouchKind::Pen, 0);
        seat->setLayout(SeatLayout::None);
        touch(ui::TouchKind::Finger, 0.8);
        EXPECT_TRUE(overlay->popovers().empty()) << "a host without bars is left alone";
        seat->setLayout(SeatLayout::Phone);
        touch(ui::TouchKind::Finger, 0.8);
        ASSERT_EQ(overlay->popovers().size(), 1U);
        std::dynamic_pointer_cast<ui::Menu>(overlay->popovers().front()->content())->perform(0);
        EXPECT_FALSE(seat->isPenOnly());
        wait();
    }

    void tellAll() {
        const std::vector<std::vector<std::string>> alerts{
            {"无法载入图片", "载入此图片时出错", "好"},
            {"打开新图片？", "当前的标注将会丢失", "取消", "打开"},
            {"继续上次的标注？", "上次的标注没有发送，重新开始会丢弃它", "继续", "重新开始"},
            {"请先完成裁剪", "离开裁剪后才能打开新图片", "好"},
            {"剪贴板不可用", "请安装 xclip 以复制和粘贴图片", "好"},
            {"剪贴板中没有图片", "", "好"},
            {"没有文件对话框", "请安装 zenity 以选择图片", "好"},
            {"继续编辑标注？", "此图片中保存了可编辑的标注", "从图片开始", "继续编辑"},
            {"面积不能超过2K", "", "我知道了"},
            {"无法保存文档", "", "好"},
            {"无法保存图片", "", "好"},
            {"内存不足", "", "确定"},
        };
        const auto text = [&](const std::string& key) {
            return key.empty() ? key : environment->localizedString(key);
        };
        for (const auto& keys : alerts) {
            ui::Alert alert{text(keys[0]), text(keys[1]), {}, {}};
            for (std::size_t i = 2; i < keys.size(); ++i)
                alert.buttons.push_back(text(keys[i]));
            environment->presentAlert(alert);
            expectWhole("the alert " + keys[0]);
            expectApart("the alert " + keys[0]);
            ui::AlertView::topmostIn(seat->window())->dismissWithButton(0);
            wait();
        }
    }

    // The tips of all that is shown in a bar, and the menus that open.
    void pointAtAll(const std::string& bar, const std::string& screen) {
        const auto overlay = ui::Overlay::in(seat->window());
        for (const auto& [name, view] : seat->editor()->shell()->namedViews()) {
            if (!name.starts_with(bar)) continue;
            seat->mouseMoved(view->convertRectTo(view->bounds(), nullptr).center());
            expectWhole("the tip of " + name + " " + screen);
            seat->mouseLeft();
            const auto button = std::dynamic_pointer_cast<ui::DeskButton>(view);
            if (!button || !button->window() || !button->isEnabled() || !button->opens()) continue;
            button->activate();
            expectWhole("the menu of " + name + " " + screen);
            overlay->closeAll();
        }
    }

    WatchingDevice device;
    std::shared_ptr<HeadlessEnvironment> environment =
        std::make_shared<HeadlessEnvironment>(device, 1);
    std::unique_ptr<EditorSeat> seat;
};

TEST_P(ScreenTextsTest, AreNoticedWhenTheyAreCut) {
    const std::string text = environment->localizedString("放弃修改");
    const gfx::Font font{"", 16};
    const double width = ui::AlignedText::sizeOf(text, font).width;
    EXPECT_TRUE(device.takeCut().empty());
    const ui::AlignedText whole(text, font, {width, 30}, 1);
    EXPECT_TRUE(device.takeCut().empty());
    const ui::AlignedText cut(text, font, {width - 1, 30}, 1);
    EXPECT_EQ(device.takeCut().size(), 1U);
}

TEST_P(ScreenTextsTest, OfAPhoneAreWholeAtTheLeastWidth) {
    expectWhole("the editor");
    expectApart("the editor");
    expectHostRoom();
    drawWithFingersAgain();
    seat->editor()->setTopNavigationItemTitle(false, environment->localizedString("完成"));
    expectApart("the editor with another title");
    seat->editor()->penView()->sendActions(ui::ControlEvent::TouchUpInside);
    wait();
    expectWhole("the panel");
    expectApart("the panel");
    seat->editor()->confirmButton()->sendActions(ui::ControlEvent::TouchUpInside);
    wait();
    drawArrow();
    ASSERT_TRUE(seat->canvas()->hasTools());
    seat->remote()->askToClose();
    wait();
    ASSERT_TRUE(seat->editor()->actionSheet());
    expectWhole("the sheet");
    expectApart("the sheet");
    seat->editor()->actionSheet()->buttons().back()->sendActions(ui::ControlEvent::TouchUpInside);
    wait();
    seat->remote()->choosePen(EditorPenCrop);
    wait();
    ASSERT_TRUE(seat->editor()->editImageInitialView());
    expectWhole("the crop editor");
    expectApart("the crop editor");
}

TEST_P(ScreenTextsTest, OfAlertsAreWholeAtTheLeastWidth) {
    tellAll();
}

TEST_P(ScreenTextsTest, OfTheDeskAreWholeAtTheLeastWidth) {
    seat->setLayout(SeatLayout::Desk);
    wait();
    ASSERT_TRUE(seat->editor()->shell());
    expectHostRoom();
    drawArrow();
    seat->remote()->showNote(environment->localizedString("已拷贝"));
    expectWhole("a note");
    for (const unsigned pen : deskPens()) {
        if (pen == EditorPenCrop) continue;
        seat->remote()->choosePen(pen);
        wait();
        pointAtAll("desk.style.", "with the pen " + std::to_string(pen));
    }
    for (const char* bar : {"desk.pens.", "desk.actions.", "desk.status."})
        pointAtAll(bar, "");
    ui::Window& window = seat->window();
    for (const char* keys : {"escape", "ctrl+a"}) {
        seat->pressKey(keys);
        seat->mousePressed(PointerButton::Other, {160, 290});
        expectWhole(std::string("the menu after ") + keys);
        const auto menu = std::dynamic_pointer_cast<ui::Menu>(
            ui::Overlay::in(window)->popovers().front()->content());
        for (std::size_t i = 0; i < menu->items().size(); ++i) {
            if (menu->items()[i].items.empty()) continue;
            menu->perform(i);
            expectWhole("what the menu opens");
        }
        ui::Overlay::in(window)->closeAll();
    }
    seat->pressKey("f1");
    expectWhole("the keys");
}

INSTANTIATE_TEST_SUITE_P(Languages, ScreenTextsTest, testing::ValuesIn(Languages::given()));

}  // namespace

}  // namespace kalim::test
