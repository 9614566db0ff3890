#include "kalimkit/theme/FrameworkImages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/Pens.h"
#include "tests/support/PictureComparison.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/TestHost.h"

namespace kalim {

namespace {

// Every picture that the editor asks for by name, those of the pens from thin to thick.
std::vector<std::string> allNames() {
    std::vector<std::string> names{
        "icon_button_pen",        "icon_button_edit",         "icon_button_delete",
        "mark_more_icon",         "background_mask_gradient", "icon_tool_more",
        "icon_tool_undo",         "icon_tool_undo_disable",   "icon_tool_redo",
        "icon_tool_redo_disable", "icon_tool_close",          "icon_tool_confirm",
        "icon_tool_rotate_crop"};
    for (const Pen& pen : pens()) {
        if (pen.showsToolIcon) continue;
        const std::string icon(pen.icon);
        names.push_back("icon_tool_" + icon);
        if (pen.shape) names.push_back("icon_tool_shape_" + icon);
        if (pen.hasOneIcon) names.push_back("icon_pen_" + icon);
        if (!pen.toolType || pen.hasOneIcon) continue;
        for (const PenSize& size : penSizes())
            names.push_back("icon_pen_" + icon + "_" + std::string(size.icon));
    }
    for (const auto& file : std::filesystem::directory_iterator(KALIM_RESOURCES)) {
        const std::string name = file.path().stem().string();
        if (name.starts_with("icon_desk_")) names.push_back(name);
    }
    return names;
}

}  // namespace

TEST(FrameworkImages, EveryNameIsDrawnAsItsFileSays) {
    if (std::string(KALIM_RSVG_CONVERT).empty()) GTEST_SKIP() << "rsvg-convert is not installed";
    const test::TestHost host({.scale = 3});
    const test::TemporaryFolder folder;
    for (const std::string& name : allNames()) {
        const gfx::ImageRef image = imageNamedForFramework(name);
        ASSERT_TRUE(image) << name;
        const test::ProgramRun run = test::runProgram(
            KALIM_RSVG_CONVERT,
            {"--zoom=3", "--output=icon.png", KALIM_RESOURCES "/" + name + ".svg"}, folder.path());
        ASSERT_EQ(run.status, 0) << run.errors;
        const auto expected = codec::decodeFile(folder.path() / "icon.png");
        const auto comparison = test::comparePictures(expected.bitmap, *image->pixels());
        EXPECT_TRUE(comparison.matches()) << name << "\n" << comparison.message;
    }
}

TEST(FrameworkImages, AreDrawnOncePerEnvironment) {
    gfx::ImageRef first;
    {
        const test::TestHost host({.scale = 1.5});
        first = imageNamedForFramework("icon_tool_undo");
        EXPECT_EQ(first->size(), gfx::Size(38, 38));
        EXPECT_EQ(first->pixelSize(), gfx::PixelSize(57, 57));
        EXPECT_EQ(imageNamedForFramework("icon_tool_undo"), first);
        EXPECT_FALSE(imageNamedForFramework("icon_tool_und"));
        EXPECT_FALSE(imageNamedForFramework(""));
    }
    const test::TestHost other;
    EXPECT_NE(imageNamedForFramework("icon_tool_undo"), first);
}

TEST(FrameworkImages, PensMayHaveADeskIconOnly) {
    const test::TestHost host;
    // The circle's left edge lies at 4 of 24 points, in the middle of the picture.
    for (const auto& [name, side, edge] :
         {std::tuple("icon_tool_number", 38, 11), std::tuple("icon_pen_number", 50, 17)}) {
        const gfx::ImageRef image = imageNamedForFramework(name);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(image->size(), gfx::Size(side, side));
        EXPECT_EQ(frameworkImageName(image), name);
        EXPECT_GT(image->pixels()->colorAt(edge, side / 2).alpha, 0.8);
    }
}

TEST(FrameworkImages, DeskIconsTakeAColour) {
    test::TestHost host;
    const auto surface = host.environment().device().makeSurface({24, 24}, 1, false);
    gfx::Context& context = surface->context();
    EXPECT_FALSE(drawDeskIcon(context, "nothing", {0, 0, 24, 24}, {1, 0, 0, 1}));
    EXPECT_TRUE(drawDeskIcon(context, "minus", {0, 0, 24, 24}, {1, 0, 0, 1}));
    const gfx::Color middle = surface->makeImage()->pixels()->colorAt(12, 12);
    EXPECT_EQ(middle.withAlpha(1), (gfx::Color{1, 0, 0, 1}));
}

TEST(FrameworkImages, CopiesKeepTheNameThatTheyWereFoundBy) {
    const test::TestHost host;
    const gfx::ImageRef arrow = imageNamedForFramework("icon_tool_arrow");
    const gfx::ImageRef copy =
        imageWithAlpha(imageWithTintColor(arrow, gfx::makeColor(1, 0, 0)), 1);
    EXPECT_EQ(frameworkImageName(arrow), "icon_tool_arrow");
    EXPECT_EQ(frameworkImageName(copy), "icon_tool_arrow");
    EXPECT_EQ(frameworkImageName(imageWithColor(gfx::makeColor(1, 0, 0))), "");
    EXPECT_EQ(frameworkImageName(nullptr), "");
}

}  // namespace kalim
