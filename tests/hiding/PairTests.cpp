// What is hidden is gone: two files that differ only there become the same bytes, whatever is done
// with them.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/image/HiddenRegion.h"
#include "tests/hiding/PairStage.h"
#include "tests/support/ProgramRun.h"

namespace kalim::test {
namespace {

using codec::Bytes;
using codec::FileFormat;
using codec::Metadata;
using enum MosaicStyle;

enum class Result { AtPictureScale, AtScreenScale, OfView, Uncut, OutOfFocus, Sealed };

struct Plan {
    const char* name;
    void (*draw)(PairStage& stage);
    Result result = Result::AtPictureScale;
    // Of canvas points, see MDrawView::setCanvasBasis.
    double basis = 0;
};

void seal(PairStage& stage) {
    stage.patch(Sealed, stage.secret());
}

void paintOver(PairStage& stage) {
    stage.patch(Solid, stage.secret());
}

// Two halves whose common edge cuts a pixel, and one inside.
void sealInPieces(PairStage& stage) {
    const gfx::Rect box = stage.secret();
    const double half = box.size.width / 2 - 0.3;
    stage.patch(Sealed, {box.minX(), box.minY(), half, box.size.height});
    stage.patch(Solid, box.inset(6, 5));
    stage.patch(Sealed, {box.minX() + half, box.minY(), box.size.width - half, box.size.height});
}

// Patches that average lie below, beside and above, and one is out of focus.
void sealAmongOthers(PairStage& stage) {
    const gfx::Rect box = stage.secret();
    stage.patch(Averaging, box.inset(-7, -9));
    seal(stage);
    stage.patch(Averaging, box.offset({box.size.width / 2, -8}));
    stage.patch(Blur, box.offset({-box.size.width / 2, 9}));
}

void sealUnderDrawings(PairStage& stage) {
    seal(stage);
    stage.drawAcross();
}

void sealAndCut(PairStage& stage) {
    sealUnderDrawings(stage);
    stage.cutThrough();
}

void sealZoomed(PairStage& stage) {
    sealUnderDrawings(stage);
    stage.canvas->zoomBy(1.7);
}

// The patch reaches beyond the picture, and so does the content.
void sealBeyond(PairStage& stage) {
    const gfx::Rect box = stage.secret();
    stage.patch(Sealed, {-20, box.minY() - 1, box.maxX() + 20, box.size.height + 2});
}

// A patch that is selected lies in no layer; one that was taken away and came back hides again.
void sealSelected(PairStage& stage) {
    stage.canvas->setForgiving(true);
    const ToolRef patch = stage.patch(Sealed, stage.secret());
    stage.canvas->undo();
    stage.canvas->exportImageAtPictureScale();
    stage.canvas->redo();
    stage.canvas->selectTools({patch});
}

// Drawn by a finger that is still down.
void sealByFinger(PairStage& stage) {
    const auto toView = [&](gfx::Point p) {
        const gfx::Rect place = stage.canvas->bgImgRect();
        const double points = place.size.width / stage.picture->pixelSize().width;
        return stage.canvas->mViewTransform().apply(
            gfx::Point{place.minX() + p.x * points, place.minY() + p.y * points});
    };
    const gfx::Rect box = stage.secret().inset(-1, -1);
    stage.pick(ToolType::Mosaic, static_cast<std::uint64_t>(Sealed));
    stage.down(toView(box.origin));
    stage.move(toView(box.center()));
    stage.move(toView({box.maxX(), box.maxY()}));
}

void sealTurned(PairStage& stage) {
    stage.turnedPatch(Sealed, stage.secret(), 0.4);
    stage.drawAcross();
}

void paintOverTurned(PairStage& stage) {
    stage.turnedPatch(Solid, stage.secret(), -1.1);
    stage.magnify(stage.secret());
}

void sealTurnedAndCut(PairStage& stage) {
    stage.turnedPatch(Sealed, stage.secret(), 2.5);
    stage.magnify(stage.secret());
    stage.cutThrough();
}

const Plan plans[] = {
    {"turned", sealTurned},
    {"turned on the screen", sealTurned, Result::AtScreenScale, 1000},
    {"painted over turned and magnified", paintOverTurned},
    {"painted over turned and magnified, as it is seen", paintOverTurned, Result::OfView, 1000},
    {"turned, magnified and cut", sealTurnedAndCut},
    {"turned, magnified and cut on the screen", sealTurnedAndCut, Result::AtScreenScale},
    {"turned in a document", sealTurned, Result::Sealed},
    {"turned and cut in a document", sealTurnedAndCut, Result::Sealed},
    {"sealed", seal},
    {"painted over", paintOver},
    {"in pieces", sealInPieces},
    {"among others", sealAmongOthers},
    {"under drawings, of a thousand points", sealUnderDrawings, Result::AtPictureScale, 1000},
    {"cut and turned", sealAndCut},
    {"beyond the picture", sealBeyond},
    {"selected", sealSelected},
    {"among others on the screen", sealAmongOthers, Result::AtScreenScale},
    {"painted over on the screen, of a thousand points", paintOver, Result::AtScreenScale, 1000},
    {"zoomed, cut and turned on the screen", sealAndCut, Result::AtScreenScale},
    {"zoomed as it is seen", sealZoomed, Result::OfView},
    {"under a finger as it is seen", sealByFinger, Result::OfView},
    {"uncut", sealAndCut, Result::Uncut},
    {"in a document", sealAmongOthers, Result::Sealed},
    {"cut in a document", sealAndCut, Result::Sealed},
};

codec::SavingOptions optionsFor(std::size_t number, bool isJpeg) {
    static constexpr FileFormat formats[] = {FileFormat::Png, FileFormat::Jpeg, FileFormat::Webp};
    static constexpr Metadata kinds[] = {Metadata::Safe, Metadata::Keep, Metadata::None};
    // A JPEG mostly stays one.
    const FileFormat format = isJpeg && number % 4 != 3 ? FileFormat::Jpeg : formats[number % 3];
    return {format, {}, kinds[number / 2 % 3]};
}

Bytes resultOf(const PairSource& source, bool isOther, const Plan& plan,
               const codec::SavingOptions& options) {
    PairStage stage(source, isOther);
    stage.canvas->setCanvasBasis(plan.basis);
    stage.window().display();
    plan.draw(stage);
    stage.window().display();
    switch (plan.result) {
        case Result::AtPictureScale:
            return stage.saved(stage.canvas->exportImageAtPictureScale(), options);
        case Result::AtScreenScale:
            return stage.saved(stage.canvas->exportImage(), options);
        case Result::OfView:
            return PairStage::plain(stage.canvas->exportImageForScale());
        case Result::Uncut:
            return PairStage::plain(stage.canvas->exportUncutImage());
        case Result::OutOfFocus:
            return PairStage::plain(stage.canvas->filterImg(stage.picture));
        case Result::Sealed:
            return stage.sealed(options.metadata);
    }
    return {};
}

std::string described(const codec::SavingOptions& options) {
    return " as format " + std::to_string(static_cast<int>(options.format)) + ", metadata " +
           std::to_string(static_cast<int>(options.metadata));
}

// The files of a pair hold different pictures, but only within what is grown.
TEST(Pairs, DifferWithinTheSecretAlone) {
    for (const PairSource& source : pairSources()) {
        PairStage one(source, false);
        const auto first = one.picture->pixels();
        const auto grid = one.picture->grid();
        PairStage two(source, true);
        const auto other = two.picture->pixels();
        ASSERT_EQ(first->size(), other->size()) << source.name;
        const gfx::PixelRect grown = grownToGrid(one.secret(), grid, first->size());
        int inside = 0;
        int outside = 0;
        for (int y = 0; y < first->height(); ++y) {
            for (int x = 0; x < first->width(); ++x) {
                if (std::equal(first->row(y) + 4 * x, first->row(y) + 4 * x + 4,
                               other->row(y) + 4 * x))
                    continue;
                const bool isInside = x >= grown.x && x < grown.x + grown.width && y >= grown.y &&
                                      y < grown.y + grown.height;
                ++(isInside ? inside : outside);
            }
        }
        EXPECT_GT(inside, 50) << source.name;
        EXPECT_EQ(outside, 0) << source.name;
    }
}

TEST(Pairs, BecomeTheSameBytes) {
    std::size_t count = 0;
    std::size_t first = 0;
    for (const PairSource& source : pairSources()) {
        // Each plan goes with every other source.
        for (std::size_t i = first++ % 2; i < std::size(plans); i += 2) {
            const Plan& plan = plans[i];
            const codec::SavingOptions options = optionsFor(count++, source.isJpeg);
            const Bytes bytes = resultOf(source, false, plan, options);
            EXPECT_FALSE(bytes.empty());
            const Bytes other = resultOf(source, true, plan, options);
            EXPECT_TRUE(bytes == other) << source.name << ", " << plan.name << described(options);
        }
    }
    EXPECT_GE(count, 200U);
}

TEST(Pairs, BecomeTheSameOutOfFocus) {
    const Plan plan{"out of focus", seal, Result::OutOfFocus};
    const std::vector<PairSource> sources = pairSources();
    for (const PairSource& source : {sources.front(), sources.back()})
        EXPECT_TRUE(resultOf(source, false, plan, {}) == resultOf(source, true, plan, {}))
            << source.name;
}

// The above can fail: what only averages or blurs tells of what it lies on.
TEST(Pairs, TellOfWhatIsNotHiddenForCertain) {
    const Plan cosmetic[] = {
        {"averaging", [](PairStage& stage) { stage.patch(Averaging, stage.secret()); }},
        {"blurred", [](PairStage& stage) { stage.patch(Blur, stage.secret()); }},
        {"bare", [](PairStage& stage) { stage.drawAcross(); }, Result::AtScreenScale},
    };
    for (const PairSource& source : pairSources()) {
        for (const Plan& plan : cosmetic)
            EXPECT_FALSE(resultOf(source, false, plan, {}) == resultOf(source, true, plan, {}))
                << source.name << ", " << plan.name;
    }
}

// ---- the command

class RedactCommand : public testing::Test {
protected:
    ProgramRun run(std::vector<std::string> arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(), "redact");
        return runProgram(KALIM_COMMAND, arguments, folder.path(), input);
    }
    static std::string rectOf(const gfx::PixelRect& rect) {
        return std::to_string(rect.x) + "," + std::to_string(rect.y) + "," +
               std::to_string(rect.width) + "," + std::to_string(rect.height);
    }
    std::string redacted(const PairSource& source, bool isOther,
                         const std::vector<std::string>& options) const {
        const Bytes file = source.make(isOther);
        std::vector<std::string> arguments{"-", "-o", "-", "--rect", rectOf(source.secret)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun done = run(arguments, {file.begin(), file.end()});
        EXPECT_EQ(done.status, 0) << source.name << ": " << done.errors;
        EXPECT_EQ(done.errors, "") << source.name;
        return done.output;
    }

    TemporaryFolder folder;
};

TEST_F(RedactCommand, HidesForCertain) {
    const std::vector<std::vector<std::string>> choices{
        {}, {"--style", "solid", "--color", "#20C0FF"}, {"-f", "jpeg", "--metadata", "keep"}};
    std::size_t number = 0;
    for (const PairSource& source : pairSources()) {
        if (number++ % 5 != 0) continue;
        for (const auto& options : choices) {
            EXPECT_TRUE(redacted(source, false, options) == redacted(source, true, options))
                << source.name << ", " << options.size() << " options";
        }
        EXPECT_FALSE(redacted(source, false, {"--style", "mosaic"}) ==
                     redacted(source, true, {"--style", "mosaic"}))
            << source.name;
    }
}

// What the canvas of an editor hides looks the same.
TEST_F(RedactCommand, DrawsWhatTheCanvasDoes) {
    const PairSource source = pairSources().front();
    const Plan plans[] = {{"sealed", seal, Result::AtPictureScale, 1000},
                          {"blurred", [](PairStage& stage) { stage.patch(Blur, stage.secret()); },
                           Result::AtPictureScale, 1000}};
    const char* const styles[] = {"sealed", "blur"};
    for (std::size_t i = 0; i < 2; ++i) {
        const Bytes drawn = resultOf(source, false, plans[i], {});
        EXPECT_TRUE(redacted(source, false, {"--style", styles[i]}) ==
                    std::string(drawn.begin(), drawn.end()))
            << styles[i];
    }
}

TEST_F(RedactCommand, CutsAtTheEdgeAndNamesWhatIsWrong) {
    gfx::Bitmap bitmap(64, 40);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 64; ++x)
            bitmap.setColorAt(x, y, {x / 64.0, y / 40.0, 0.5, x < 32 ? 1.0 : 0.0});
    Bytes file;
    ASSERT_FALSE(codec::encodePng(bitmap, file));
    writeText(folder.path() / "in.png", {file.begin(), file.end()});
    const std::string solid = "--style=solid";
    // A longer file is in its place.
    writeText(folder.path() / "out.png", std::string(99999, 's'));
    const ProgramRun done = run({"in.png", "-o", "out.png", "--rect", "50,30,900,900", "--rect",
                                 "-5,-5,9,9", solid, "--color", "#FF0000"});
    ASSERT_EQ(done.status, 0) << done.errors;
    const gfx::Bitmap result = codec::decodeFile(folder.path() / "out.png").bitmap;
    ASSERT_EQ(result.size(), bitmap.size());
    EXPECT_LT(std::filesystem::file_size(folder.path() / "out.png"), 9999U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
    const gfx::Color red{1, 0, 0, 1};
    EXPECT_EQ(result.colorAt(63, 39), red);
    EXPECT_EQ(result.colorAt(50, 30), red);
    EXPECT_EQ(result.colorAt(3, 3), red);
    EXPECT_EQ(result.colorAt(4, 3), bitmap.colorAt(4, 3));
    EXPECT_EQ(result.colorAt(49, 30).alpha, 0);

    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };
    const Case cases[] = {
        {{"in.png", "-o", "no.png"}, "--rect"},
        {{"in.png", "--rect", "1,2,3,4"}, "--output"},
        {{"in.png", "-o", "no.png", "--rect", "1,2,0,4"}, "--rect: must be x,y,width,height"},
        {{"in.png", "-o", "no.png", "--rect", "1,2,3,4", "--rect", "64,0,9,9"},
         "lies beside the picture, which has 64 x 40 pixels"},
        {{"in.png", "-o", "no.png", "--rect", "1,2,3,4", "--style", "fog"},
         "must be sealed, solid"},
        {{"in.png", "-o", "no.png", "--rect", "1,2,3,4", "--color", "red"}, "must be a colour"},
        {{"in.png", "-o", "no.png", "--rect", "1,2,3,4", "--color", "#FF0000"},
         "needs --style solid"},
        {{"in.png", "-o", "no.heic", "--rect", "1,2,3,4"}, "no.heic"},
        {{"lost.png", "-o", "no.png", "--rect", "1,2,3,4"}, "lost.png"},
    };
    for (const Case& each : cases) {
        const ProgramRun refused = run(each.arguments);
        EXPECT_EQ(refused.status, 2) << each.complaint;
        EXPECT_NE(refused.errors.find(each.complaint), std::string::npos)
            << each.complaint << ", not " << refused.errors;
        EXPECT_FALSE(std::filesystem::exists(folder.path() / "no.png")) << each.complaint;
    }
}

}  // namespace
}  // namespace kalim::test
