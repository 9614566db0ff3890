#include "kalimkit/image/SealedBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "kalimkit/image/HiddenRegion.h"

namespace kalim {
namespace {

gfx::Bitmap filled(int width, int height, const gfx::Color& color) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.setColorAt(x, y, color);
    return bitmap;
}

// Over an even rim there are blocks all the same, near its colour.
TEST(SealedBlocks, SpreadTheColoursOfTheRimInAPattern) {
    const gfx::PixelRects hidden{{16, 16, 64, 64}};
    gfx::Bitmap paper = filled(96, 96, {1, 1, 1, 1});
    const gfx::Bitmap colors = sealedColors(paper, hidden, 8);
    ASSERT_EQ(colors.size(), (gfx::PixelSize{12, 12}));
    std::set<double> shades;
    for (int y = 2; y < 10; ++y) {
        for (int x = 2; x < 10; ++x)
            shades.insert(colors.colorAt(x, y).green);
    }
    EXPECT_GT(shades.size(), 8u);
    EXPECT_GE(*shades.begin(), 0.9);
    // What the region hides changes nothing, the pixels beside it do.
    for (int y = 16; y < 80; ++y)
        for (int x = 16; x < 80; ++x)
            paper.setColorAt(x, y, {0, 0, 0, 0.5});
    EXPECT_EQ(sealedColors(paper, hidden, 8), colors);
    for (int y = 0; y < 96; ++y)
        paper.setColorAt(15, y, {1, 0, 0, 1});
    EXPECT_FALSE(sealedColors(paper, hidden, 8) == colors);
}

TEST(SealedBlocks, AreGreyWithoutARim) {
    for (const double alpha : {0.0, 1.0}) {
        gfx::Bitmap bitmap = filled(30, 20, {0.3, 0.2, 0.9, alpha});
        const gfx::PixelRects all{{0, 0, 30, 20}};
        EXPECT_EQ(sealedColors(bitmap, all, 8).colorAt(3, 2),
                  (gfx::Color{128 / 255.0, 128 / 255.0, 128 / 255.0, 1}));
    }
    // Nothing that can be seen lies beside it.
    const gfx::Bitmap clear(30, 20);
    EXPECT_EQ(sealedColors(clear, {{8, 8, 8, 8}}, 8).colorAt(1, 1).red, 128 / 255.0);
}

TEST(HiddenRegion, GrowsToTheCellsOfItsFile) {
    struct Case {
        gfx::Rect rect;
        gfx::PixelGrid grid;
        gfx::PixelRect grown;
    };
    const gfx::PixelGrid eights{{8, 8}, 0, 0, 0};
    const gfx::PixelGrid turned{{16, 8}, -5, -3, 2};
    const Case cases[] = {
        {{10, 10, 10, 10}, {}, {10, 10, 10, 10}},
        {{10.4, 10.0000001, 9.2, 9.9999998}, {}, {10, 10, 10, 10}},
        {{10.5, 3.2, 0.1, 0.1}, {}, {10, 3, 1, 1}},
        {{10, 10, 10, 10}, eights, {8, 8, 16, 16}},
        {{8, 16, 8, 8}, eights, {8, 16, 8, 8}},
        {{90, 70, 900, 900}, eights, {88, 64, 12, 12}},
        {{12, 6, 4, 4}, turned, {9, 3, 20, 12}},
        {{0, 0, 3, 3}, turned, {0, 0, 13, 7}},
        {{-9, -9, 9, 9}, eights, {}},
        {{100, 0, 5, 5}, eights, {}},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(grownToGrid(each.rect, each.grid, {100, 76}), each.grown)
            << each.rect.minX() << "," << each.rect.minY();
    }
}

TEST(HiddenRegion, HasEveryPixelThatATurnedAreaTouches) {
    constexpr gfx::PixelSize size{100, 76};
    for (const gfx::PixelGrid& grid :
         {gfx::PixelGrid{}, gfx::PixelGrid{.cell = {16, 8}, .x = -3, .y = -5, .reach = 1}}) {
        for (double angle = 0.1; angle < 6; angle += 0.7) {
            const gfx::Rect box(20.3, -4, 61, 33.7);
            const auto turn = gfx::AffineTransform::rotation(angle, box.center());
            const gfx::PixelRects rows = grownToGrid(gfx::cornersOf(box, turn), grid, size);
            const auto isHidden = [&](double x, double y) {
                return std::ranges::any_of(rows, [&](const gfx::PixelRect& row) {
                    return x >= row.x && x < row.x + row.width && y >= row.y &&
                           y < row.y + row.height;
                });
            };
            const double farthest = std::hypot(grid.cell.width, grid.cell.height) + grid.reach * 2;
            const gfx::Rect near = box.inset(-farthest - 1, -farthest - 1);
            for (int i = 0; i < 400 * 305; ++i) {
                const gfx::Point p{i % 400 / 4.0 + 0.1, i / 400 / 4.0 + 0.1};
                const gfx::Point own = turn.inverted().apply(p);
                const bool isInside = box.contains(own);
                const bool hides = isHidden(p.x, p.y);
                ASSERT_TRUE(hides || !isInside) << p.x << "," << p.y << " at " << angle;
                ASSERT_TRUE(!hides || near.contains(own)) << p.x << "," << p.y << " at " << angle;
            }
        }
    }
}

}  // namespace
}  // namespace kalim
