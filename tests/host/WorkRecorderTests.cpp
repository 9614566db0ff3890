#include "kalimkit/host/seat/WorkRecorder.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/headless/LiveScenario.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/ui/environment/MemoryWorkStore.h"

namespace kalim::test {

namespace {

using Contents = std::shared_ptr<ui::MemoryWorkStore::Contents>;

// An editor that ends without a word, as by a crash.
class Session {
public:
    explicit Session(Contents contents = std::make_shared<ui::MemoryWorkStore::Contents>())
        : store(std::move(contents)) {
        environment->setShowsAlerts(true);
        seat.present(EditorSeat::makeEditor(picture, {}, {}));
        wait(1);
        recorder->attach(seat.editor(), [] { return ui::WorkStart{"a.png", "00ff", {1, 2}, {}}; });
    }
    void wait(double seconds) {
        environment->wait(seconds);
        seat.show();
    }
    void play(const std::string& line) {
        EXPECT_EQ(scenario.play(line), std::nullopt) << line;
        wait(1);
    }
    void drag(int x, int y) {
        const auto place = [](int left, int top) {
            return "[[" + std::to_string(left) + "," + std::to_string(top) + "]]}";
        };
        scenario.play(R"({"touch":"began","points":)" + place(x, y));
        scenario.play(R"({"touch":"moved","points":)" + place(x + 60, y + 40));
        play(R"({"touch":"ended","points":)" + place(x + 60, y + 40));
    }
    gfx::ImageRef image(gfx::PixelSize size) const {
        return device->makeImage(gfx::Bitmap(size.width, size.height), 1,
                                 gfx::ImageOrientation::Up);
    }
    // What is drawn, what can be undone, and whether it would be lost without a question.
    std::string print() {
        const JsonValue canvas = describeCanvas(*seat.canvas());
        return dumpJson(*canvas.find("tools")) + dumpJson(*canvas.find("canUndo")) +
               dumpJson(*canvas.find("canRedo")) +
               (seat.editor()->asksBeforeClosing() ? " asks" : "");
    }
    std::optional<std::string> recover() {
        std::optional<std::string> problem = "there is no work";
        findUnfinishedWork(store, "00ff", [&](const std::optional<ui::WorkSummary>& found) {
            if (!found) return;
            store.open(found->id, [&](const std::optional<ui::Work>& work) {
                problem = recorder->goOnWith(*work, picture);
            });
        });
        wait(1);
        return problem;
    }
    std::vector<ui::Work>& works() { return store.contents()->works; }

    std::shared_ptr<gfx::Device> device = gfx::CairoDevice::make();
    std::shared_ptr<HeadlessEnvironment> environment =
        std::make_shared<HeadlessEnvironment>(*device, 1);
    gfx::ImageRef picture = image({300, 200});
    EditorSeat seat{environment, {390, 844}};
    LiveScenario scenario{seat, [this](double seconds) { wait(seconds); }};
    ui::MemoryWorkStore store;
    std::shared_ptr<WorkRecorder> recorder = std::make_shared<WorkRecorder>(store);
};

}  // namespace

TEST(WorkRecorder, WhatWasFinishedIsThereAgainAfterEveryStep) {
    Session editor;
    editor.play(R"({"key":"r"})");
    EXPECT_TRUE(editor.works().empty());
    std::vector<std::string> prints;
    std::vector<ui::Work> works;
    const auto keep = [&] {
        prints.push_back(editor.print());
        works.push_back(editor.works().front());
        EXPECT_EQ(works.back().steps.size(), works.size());
        works.back().summary.isHeld = false;
    };
    editor.drag(100, 340);
    keep();
    editor.drag(220, 440);
    keep();
    for (const char* const key : {"ctrl+z", "ctrl+z", "ctrl+y"}) {
        editor.play(std::string(R"({"key":")") + key + "\"}");
        keep();
    }
    for (std::size_t count = 0; count < works.size(); ++count) {
        const auto contents = std::make_shared<ui::MemoryWorkStore::Contents>();
        contents->works = {works[count]};
        Session next(contents);
        EXPECT_EQ(next.recover(), std::nullopt);
        EXPECT_EQ(next.print(), prints[count]) << "after step " << count + 1;
        // It goes on in the same work.
        next.drag(150, 400);
        ASSERT_EQ(next.works().size(), 1U);
        EXPECT_EQ(next.works().front().steps.size(), count + 2);
        next.recorder->end();
        EXPECT_TRUE(next.works().empty());
    }
}

TEST(WorkRecorder, AWorkIsFoundByTheBytesThatItsFileWasSavedWith) {
    Contents contents;
    std::string before;
    {
        Session session;
        session.recorder->moveTo([] { return ui::WorkStart{"a.png", "11ee", {3}, {}}; });
        EXPECT_TRUE(session.works().empty());
        session.play(R"({"key":"r"})");
        session.drag(60, 350);
        session.drag(160, 420);
        session.play(R"({"key":"ctrl+z"})");
        session.recorder->moveTo([] { return ui::WorkStart{"a.png", "00ff", {3, 4}, {}}; });
        session.drag(200, 300);
        before = session.print();
        contents = session.store.contents();
    }
    EXPECT_NE(before.find("MDrawRect"), std::string::npos) << before;
    ASSERT_EQ(contents->works.size(), 1U);
    EXPECT_EQ(contents->works.front().bytes, (std::vector<std::uint8_t>{3, 4}));
    Session after(contents);
    EXPECT_EQ(after.recover(), std::nullopt);
    EXPECT_EQ(after.print(), before);
}

TEST(WorkRecorder, AnotherPictureIsAnotherWorkAndADamagedOneStays) {
    Session editor;
    editor.play(R"({"key":"r"})");
    editor.drag(100, 340);
    const std::string first = editor.works().front().summary.id;
    editor.seat.editor()->openPicture(editor.image({30, 20}));
    EXPECT_TRUE(editor.works().empty());
    editor.drag(100, 400);
    EXPECT_TRUE(editor.works().empty());
    editor.recorder->setSource([] { return ui::WorkStart{"b.png", "00ff", {3}, {}}; });
    editor.drag(100, 340);
    ASSERT_EQ(editor.works().size(), 1U);
    EXPECT_EQ(editor.works().front().summary.picture, "b.png");

    const auto contents = std::make_shared<ui::MemoryWorkStore::Contents>();
    ui::Work cut = editor.works().front();
    cut.summary.isHeld = false;
    cut.steps = {"{\"nothing\":"};
    ui::Work empty = cut;
    empty.steps = {};
    empty.summary = {"empty", "b.png", "00ff", {}, 0, false};
    contents->works = {cut, empty};
    Session next(contents);
    EXPECT_NE(next.recover(), std::nullopt);
    next.play(R"({"key":"r"})");
    next.drag(100, 340);
    ASSERT_EQ(next.works().size(), 1U);
    EXPECT_EQ(next.works().front().steps, cut.steps);
}

// The set-up is of before the first step, and of before all steps where the file was saved since.
TEST(WorkRecorder, ACropIsPlayedAgainFromBeforeIt) {
    const PictureCut cut{gfx::Rect(20, 10, 200, 150), 1};
    for (const bool isSaved : {false, true}) {
        Session editor;
        ASSERT_TRUE(editor.seat.canvas()->setPictureCut(cut));
        if (isSaved) {
            editor.play(R"({"key":"r"})");
            editor.drag(100, 340);
            editor.recorder->moveTo([] { return ui::WorkStart{"a.png", "00ff", {3, 4}, {}}; });
        }
        const std::string before = editor.print();
        Session next(editor.store.contents());
        next.works().front().summary.isHeld = false;
        EXPECT_EQ(next.recover(), std::nullopt);
        EXPECT_EQ(next.print(), before);
        EXPECT_TRUE(next.seat.canvas()->pictureCut() == cut);
    }
}

}  // namespace kalim::test
