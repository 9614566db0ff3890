#include <gtest/gtest.h>

#include "kalimkit/canvas/SealedDocument.h"
#include "kalimkit/canvas/StepListener.h"
#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/UnknownTool.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/shapes/ToolRegistry.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;

const DocumentReading withoutBytes{.needsBytes = false};

// A canvas on one of the screens, with a picture of many colours.
struct Screen : CanvasHost {
    explicit Screen(const test::TestHostOptions& options, bool isForgiving = false)
        : CanvasHost(options) {
        canvas->setForgiving(isForgiving);
        gfx::Bitmap bitmap(611, 402);
        for (int y = 0; y < bitmap.height(); ++y) {
            for (int x = 0; x < bitmap.width(); ++x)
                bitmap.setColorAt(x, y, {x / 611.0, y / 402.0, (x / 7 + y / 7) % 2 * 0.5, 1});
        }
        picture = environment().device().makeImage(bitmap, 1, gfx::ImageOrientation::Up);
    }
    // One of each kind, some of them turned.
    void drawAll() {
        canvas->setSnipImage(picture);
        window().display();
        canvas->setUnit("mm");
        canvas->setCalibration(0.3);
        const gfx::Point middle = canvas->bgImgRect().center();
        double place = 0;
        const auto all = ToolRegistry::current().kinds();
        for (const ToolClass* const kind : all) {
            const gfx::Point start = middle + gfx::Point{place - 100, place / 3 - 60};
            const ToolRef tool = kind->makeWithStartPoint(start);
            if (kind != all.back()) tool->setColor(place < 50 ? canvas->color() : nullptr);
            if (tool->words()) tool->setWords("一 " + std::string(kind->name));
            std::vector<gfx::Point> way;
            for (int i = 1; i < 9; ++i)
                way.push_back(start + gfx::Point{i * 11.3, (i % 3) * 17.0 + i});
            tool->drawThrough(way);
            if (tool->isSupportGestureRotate() && place > 30) tool->rotateEndedWithAngle(0.7);
            EXPECT_TRUE(canvas->addTool(tool)) << kind->name;
            place += 14;
        }
        // Texts that are too large for their boxes shrink when they are drawn first.
        exported();
    }
    std::optional<std::string> open(const std::string& text) {
        const ReadDocument read = readDocument(text, withoutBytes);
        return read.problem ? read.problem : canvas->openDocument(read.document, picture);
    }
    // The tools' prints without their names.
    JsonValue tools() const {
        JsonValue::Array list = *describeCanvas(*canvas).front().second.array();
        for (JsonValue& tool : list)
            std::erase_if(*tool.object(),
                          [](const auto& member) { return member.first == "name"; });
        return list;
    }
    gfx::Bitmap exported() const { return *canvas->exportImageAtPictureScale()->pixels(); }

    gfx::ImageRef picture;
};

// Levels; what has a shadow is cut a pixel elsewhere.
int worstDifference(const gfx::Bitmap& a, const gfx::Bitmap& b) {
    int worst = a.size() == b.size() ? 0 : 255;
    for (std::size_t i = 0; worst < 255 && i < a.byteCount(); ++i)
        worst = std::max(worst, std::abs(a.data()[i] - b.data()[i]));
    return worst;
}

const test::TestHostOptions screens[] = {{1, {320, 568}}, {3, {390, 844}}, {2, {1280, 800}}};

TEST(MDrawViewDocument, IsTheSameOnEveryScreen) {
    for (const bool isForgiving : {false, true}) {
        for (const double basis : {0.0, 1000.0}) {
            for (const auto& screen : screens) {
                std::string text;
                JsonValue tools;
                gfx::Bitmap exported;
                {
                    Screen first(screen, isForgiving);
                    first.canvas->setCanvasBasis(basis);
                    first.drawAll();
                    first.canvas->setPictureCut({gfx::Rect(11, 23, 480, 301), 3});
                    text = documentText(first.canvas->document());
                    tools = first.tools();
                    exported = first.exported();
                }
                for (const auto& other : screens) {
                    Screen second(other, isForgiving);
                    ASSERT_EQ(second.open(text), std::nullopt);
                    EXPECT_TRUE(second.tools() == tools);
                    EXPECT_TRUE(second.exported() == exported);
                    EXPECT_TRUE(documentText(second.canvas->document()) == text);
                    EXPECT_FALSE(second.canvas->canUndo() || second.canvas->canRedo());
                    EXPECT_FALSE(second.canvas->isDirty());
                }
            }
        }
    }
}

TEST(MDrawViewDocument, KeepsWhatItDoesNotKnow) {
    Screen screen(screens[1]);
    screen.drawAll();
    JsonValue changed = parseJson(documentText(screen.canvas->document())).value;
    changed.object()->emplace_back("future", JsonValue::Array{1, "x"});
    for (auto& [key, value] : *changed.object()) {
        if (key == "canvas") value.object()->emplace_back("grid", 7);
        if (key != "tools") continue;
        value.array()->front().object()->emplace_back("glow", true);
        value.array()->insert(value.array()->begin() + 1,
                              JsonValue::Object{{"class", "MDrawStar"},
                                                {"startPoint", JsonValue::Array{100, 400}},
                                                {"endPoint", JsonValue::Array{150, 440}},
                                                {"spikes", 7}});
        value.array()->push_back(JsonValue::Object{{"class", "MDrawBlob"}});
    }
    // A colour that one tool alone has, but an unknown one as well, has no number any more.
    const std::string text = dumpJson(changed) + "\n";
    ASSERT_EQ(screen.open(text), std::nullopt);
    EXPECT_TRUE(documentText(screen.canvas->document()) == text);
    const ToolList& tools = screen.canvas->tools();
    EXPECT_EQ(tools[1]->toolClass().name, "MDrawStar");
    EXPECT_EQ(tools[1]->frame(), gfx::Rect(100, 400, 50, 40));
    EXPECT_EQ(tools.back()->frame().center(), screen.canvas->bgImgRect().center());
    // It is deleted as others are, and comes back whole.
    screen.canvas->selectTools({tools[1]});
    screen.canvas->deleteSelectedTools();
    screen.canvas->undo();
    const JsonValue again = parseJson(documentText(screen.canvas->document())).value;
    EXPECT_EQ(*again.find("tools")->array()->back().find("spikes"), JsonValue(7));
}

struct Listener : StepListener {
    void canvasDidStep(const std::string& step) override { steps.push_back(step); }
    void canvasDidRestart() override { steps.clear(); }
    std::vector<std::string> steps;
};

// A finger that rests at the end of a stroke; below and above lie others.
TEST(MDrawViewDocument, ReplaysAStrokeThatHasBecomeAShape) {
    Screen screen(screens[1], true);
    const auto listener = std::make_shared<Listener>();
    screen.canvas->setStepListener(listener);
    screen.canvas->setSnipImage(screen.picture);
    screen.draw(ToolType::Rectangle, {20, 20}, {60, 60});
    screen.pick(ToolType::Freehand);
    screen.down({30, 90});
    for (double x = 40; x <= 130; x += 10)
        screen.move({x, 95});
    screen.wait(0.6);
    screen.move({140, 120});
    screen.up();
    screen.draw(ToolType::Ellipse, {100, 40}, {160, 90});
    Screen other(screens[1], true);
    ASSERT_EQ(other.open(screen.canvas->stepsSetUp()), std::nullopt);
    ASSERT_EQ(other.canvas->replaySteps(listener->steps), std::nullopt);
    const char* const names[] = {"MDrawLine", "MDrawFreeline", "MDrawLine"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(other.tools(), screen.tools()) << i;
        EXPECT_EQ(other.canvas->tools()[1]->toolClass().name, names[i]);
        for (MDrawView* const canvas : {screen.canvas.get(), other.canvas.get()}) {
            if (i == 0) canvas->undo();
            i == 1 ? canvas->redo() : canvas->undo();
        }
    }
}

// What others have put into tools does not get in the way of steps.
TEST(MDrawViewDocument, KeepsWhatItDoesNotKnowThroughSteps) {
    Screen screen(screens[1]);
    screen.drawAll();
    JsonValue changed = parseJson(documentText(screen.canvas->document())).value;
    for (auto& [key, value] : *changed.object()) {
        if (key != "tools") continue;
        JsonValue::Object foreign{{"id", 99}, {"name", "x"}, {"at", 99}};
        std::ranges::copy(foreign, std::back_inserter(*value.array()->front().object()));
        foreign.insert(foreign.begin(), {"class", "MDrawBlob"});
        value.array()->push_back(foreign);
    }
    const auto listener = std::make_shared<Listener>();
    ASSERT_EQ(screen.open(dumpJson(changed)), std::nullopt);
    screen.canvas->setStepListener(listener);
    for (const ToolRef& tool : {screen.canvas->tools().back(), screen.canvas->tools().front()}) {
        screen.canvas->selectTools({tool});
        screen.canvas->deleteSelectedTools();
        screen.canvas->undo();
    }
    const std::string text = documentText(screen.canvas->document());
    Screen other(screens[1]);
    ASSERT_EQ(other.open(screen.canvas->stepsSetUp()), std::nullopt);
    EXPECT_EQ(other.canvas->replaySteps(listener->steps), std::nullopt);
    EXPECT_TRUE(documentText(other.canvas->document()) == text);
}

TEST(MDrawViewDocument, SealedHoldsNothingHiddenAndLooksTheSame) {
    for (const int turns : {0, 1}) {
        Screen screen(screens[0], true);
        screen.canvas->setClipsToPicture(true);
        screen.drawAll();
        Document known = screen.canvas->document();
        known.others = known.picture->others = known.canvas.others =
            known.measuring.others = {{"thumbnail", "of all"}};
        ASSERT_EQ(screen.canvas->openDocument(known, screen.picture), std::nullopt);
        screen.canvas->setPictureCut({gfx::Rect(150, 30, 401, 250), turns});
        screen.draw(ToolType::Rectangle, {2, 2}, {12, 12});
        const gfx::Bitmap before = screen.exported();
        const std::size_t count = screen.canvas->tools().size();
        const SealedDocument sealed = screen.canvas->sealedDocument();
        EXPECT_EQ(screen.canvas->tools().size(), count);
        EXPECT_EQ(sealed.picture->pixelSize(), (gfx::PixelSize{401, 250}));
        EXPECT_EQ(sealed.document.cut.crop, gfx::Rect(0, 0, 401, 250));
        for (const DocumentTool& tool : sealed.document.tools)
            EXPECT_NE(tool.className, "MDrawMosiac");
        const std::string text = documentText(sealed.document);
        EXPECT_EQ(text.find("thumbnail"), std::string::npos);
        const ReadDocument read = readDocument(text, withoutBytes);
        ASSERT_EQ(read.problem, std::nullopt);
        EXPECT_TRUE(read.document.isSealed);
        ASSERT_EQ(screen.canvas->openDocument(read.document, sealed.picture), std::nullopt);
        EXPECT_LE(worstDifference(screen.exported(), before), 8) << turns;
    }
}

TEST(MDrawViewDocument, AFarToolDoesNotKeepACropFromBeingExported) {
    Screen screen(screens[0]);
    screen.drawAll();
    Document document = screen.canvas->document();
    document.cut.crop = gfx::Rect(150, 30, 401, 250);
    document.tools.front().endPoint = {1e9, 1e9};
    ASSERT_EQ(screen.canvas->openDocument(document, screen.picture), std::nullopt);
    const gfx::ImageRef image = screen.canvas->exportImageAtPictureScale();
    ASSERT_TRUE(image);
    EXPECT_EQ(image->pixelSize(), (gfx::PixelSize{401, 250}));
}

TEST(MDrawViewDocument, ThatDoesNotFitItsPictureChangesNothing) {
    Screen screen(screens[0]);
    screen.drawAll();
    const Document document = screen.canvas->document();
    const JsonValue tools = screen.tools();
    EXPECT_EQ(screen.canvas->openDocument(document, screen.plainPicture(402, 611, {})),
              "picture.size is not that of the picture, which has 402 x 611 pixels");
    EXPECT_TRUE(screen.canvas->openDocument(document, nullptr));
    EXPECT_TRUE(screen.tools() == tools);
    EXPECT_TRUE(screen.canvas->canUndo());
}

}  // namespace
}  // namespace kalim
