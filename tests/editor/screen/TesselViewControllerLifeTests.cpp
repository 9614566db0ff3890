#include "kalimkit/editor/screen/TesselViewController.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;

TEST(TesselViewController, MayBeLetGoOfInEveryAnswerOfItsHost) {
    // By confirming, by closing at once, and by closing after the question.
    for (const int way : {0, 1, 2}) {
        EditorScreen host;
        host.present();
        const std::weak_ptr<TesselViewController> editor = host.editor;
        const auto bar = host.editor->toolView();
        host.owner->answer = [&] {
            host.window().setRootViewController(nullptr);
            host.editor.reset();
            host.owner.reset();
        };
        if (way == 2) {
            host.draw();
            host.use(bar->closeButton());
            host.tap(host.editor->actionSheet()->buttonWithTag(1));
        } else {
            host.tap(way == 0 ? std::shared_ptr<ui::View>(bar->confirmButton())
                              : bar->closeButton());
        }
        host.wait(1);
        EXPECT_FALSE(host.owner) << way;
        EXPECT_TRUE(editor.expired()) << way;
    }
}

TEST(TesselViewController, MayBeLetGoOfInEveryTextThatItLogs) {
    for (const std::string last :
         {"draw canUseRingAnimation 1", "###### startScaleAnimate In start",
          "###### startScaleAnimate In end", "###### startScaleAnimate out start",
          "###### startScaleAnimate out end", "draw viewWillDisappear "}) {
        EditorScreen host;
        const std::weak_ptr<TesselViewController> editor = host.editor;
        host.editor->setLogTranferBlock([&host, last](const std::string& text) {
            if (text != last || !host.editor) return;
            host.editor.reset();
            host.window().setRootViewController(nullptr);
        });
        host.present();
        const std::function<void()> steps[] = {
            [&] { host.editor->startAnimateIn(); },
            [&] {
                host.editor->startAnimateOut({0, 0, 9, 9});
            },
            [&] { host.window().setRootViewController(nullptr); }};
        for (const auto& step : steps) {
            if (host.editor) step();
            host.wait(1);
        }
        EXPECT_TRUE(!host.editor && editor.expired()) << last;
    }
}

TEST(TesselViewController, NothingThatWasScheduledKeepsOrMissesIt) {
    // Gone at once, in the middle of its set-up, its panel, its buttons and its transitions.
    const std::function<void(EditorScreen&)> moments[] = {
        [](EditorScreen&) {},
        [](EditorScreen& host) { host.wait(0.05); },
        [](EditorScreen& host) { (host.wait(1), host.tap(host.editor->penView())); },
        [](EditorScreen& host) {
            (host.wait(1), host.use(host.editor->penView()));
            host.tap(host.editor->confirmButton());
        },
        [](EditorScreen& host) { (host.wait(1), host.editor->seletedToolsStateChanged(true)); },
        [](EditorScreen& host) {
            (host.wait(1), host.drawAndSelect(), host.tap(host.editor->configViewEdit()));
        },
        [](EditorScreen& host) { host.editor->startAnimateIn(); },
        [](EditorScreen& host) {
            (host.wait(1), host.editor->startAnimateOut({0, 0, 9, 9}));
        },
        [](EditorScreen& host) { host.editor->clickPickImage(); },
        [](EditorScreen& host) {
            (host.wait(1), host.draw(), host.tap(host.editor->toolView()->closeButton()));
        },
    };
    for (const auto& moment : moments) {
        EditorScreen host;
        host.window().setRootViewController(host.editor);
        moment(host);
        const std::weak_ptr<TesselViewController> editor = host.editor;
        host.window().setRootViewController(nullptr);
        host.editor.reset();
        EXPECT_TRUE(editor.expired()) << &moment - moments;
        host.environment().answerPick(host.picture(20, 20));
        host.wait(1);
        EXPECT_TRUE(host.window().rootView()->subviews().empty()) << &moment - moments;
    }
}

}  // namespace
}  // namespace kalim
