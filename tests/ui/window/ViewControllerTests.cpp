#include "kalimkit/ui/window/ViewController.h"

#include <gtest/gtest.h>

#include <string>

#include "kalimkit/ui/window/Window.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"

namespace kalim::ui {

namespace {

class LogController : public ViewController {
public:
    LogController(std::string name, std::string& log) : _name(std::move(name)), _log(log) {}
    ~LogController() override { note("gone"); }
    void viewDidLoad() override { note("load"); }
    void viewWillAppear(bool) override { note("will"); }
    void viewDidAppear(bool) override { note(window() ? "did" : "did nowhere"); }
    void viewWillDisappear(bool) override { note(window() ? "wont" : "wont nowhere"); }
    void viewDidDisappear(bool) override { note("didnt"); }
    void viewWillLayoutSubviews() override { note("layout"); }
    void viewDidLayoutSubviews() override { note("laid"); }
    bool prefersStatusBarHidden() const override { return hidesStatusBar; }
    bool hidesStatusBar = true;

private:
    void note(const std::string& what) { _log += _name + " " + what + ", "; }
    std::string _name;
    std::string& _log;
};

class BarEnvironment : public HeadlessEnvironment {
public:
    using HeadlessEnvironment::HeadlessEnvironment;
    void setStatusBarHidden(bool hidden, bool /*animated*/) override {
        bar += hidden ? "hidden " : "shown ";
    }
    std::string bar;
};

TEST(ViewController, HearsInOrderWhenItsViewComesAndGoes) {
    std::string log;
    {
        const test::TestHost host{{.device = std::make_shared<test::RecordingDevice>()}};
        Window window({100, 200});
        window.setRootViewController(std::make_shared<LogController>("a", log));
        EXPECT_EQ(log, "a load, a will, a layout, a laid, a did, ");
        const auto view = window.rootViewController()->view();
        EXPECT_EQ(view->frame(), gfx::Rect(0, 0, 100, 200));
        log.clear();
        window.setSize({200, 100});
        window.display();
        EXPECT_EQ(view->frame(), gfx::Rect(0, 0, 200, 100));
        EXPECT_EQ(log, "a layout, a laid, ");
        log.clear();
        window.setRootViewController(std::make_shared<LogController>("b", log));
        EXPECT_EQ(log, "a wont, b load, b will, a didnt, b layout, b laid, b did, a gone, ");
        // Whoever keeps a view may lay it out when its controller has gone.
        view->setNeedsLayout();
        view->layoutIfNeeded();
        log.clear();
    }
    EXPECT_EQ(log, "b wont, b didnt, b gone, ");
}

TEST(ViewController, TheKeyWindowIsTheOldestThatIsLeftAndItsRootAsksForTheStatusBar) {
    test::RecordingDevice device;
    const auto environment = std::make_shared<BarEnvironment>(device, 1);
    const auto before = Environment::install(environment);
    EXPECT_EQ(environment->keyWindow(), nullptr);
    auto first = std::make_unique<Window>(gfx::Size{10, 10});
    auto second = std::make_unique<Window>(gfx::Size{10, 10});
    EXPECT_EQ(environment->keyWindow(), first.get());
    first = nullptr;
    EXPECT_EQ(environment->keyWindow(), second.get());

    std::string log;
    const auto controller = std::make_shared<LogController>("a", log);
    controller->setNeedsStatusBarAppearanceUpdate();
    EXPECT_EQ(environment->bar, "");
    second->setRootViewController(controller);
    controller->hidesStatusBar = false;
    controller->setNeedsStatusBarAppearanceUpdate();
    EXPECT_EQ(environment->bar, "hidden shown ");
    second->setRootViewController(nullptr);
    EXPECT_FALSE(controller->window());

    environment->setUserDefault("hint", true);
    EXPECT_EQ(environment->userDefault("hint"), true);
    EXPECT_EQ(environment->userDefault("other"), std::nullopt);
    second = nullptr;
    Environment::install(before);
}

}  // namespace

}  // namespace kalim::ui
