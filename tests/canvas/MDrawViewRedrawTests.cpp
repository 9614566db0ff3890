#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "tests/canvas/CanvasHost.h"

namespace kalim::test {

namespace {

gfx::BitmapRef pixelsOf(CanvasHost& host) {
    host.window().display();
    return host.window().surface()->makeImage()->pixels();
}

// Of all channels of all pixels, levels.
int largestDifference(const gfx::Bitmap& a, const gfx::Bitmap& b) {
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int byte = 0; byte < 4 * a.width(); ++byte)
            largest = std::max(largest, std::abs(a.row(y)[byte] - b.row(y)[byte]));
    return largest;
}

gfx::ImageRef checkeredPicture(CanvasHost& host) {
    gfx::Bitmap bitmap(200, 260);
    for (int y = 0; y < bitmap.height(); ++y)
        for (int x = 0; x < bitmap.width(); ++x)
            bitmap.setColorAt(x, y, {x / 200.0, y / 260.0, (x / 5 + y / 5) % 2 * 0.5, 1});
    return host.environment().device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
}

struct Case {
    TestHostOptions options;
    std::function<void(CanvasHost&)> act;
};

const Case cases[] = {
    // A shadow is as large on the screen as ever where canvas points are much smaller.
    {{.scale = 8, .size = {60, 80}},
     [](CanvasHost& host) {
         host.canvas->setCanvasBasis(MDrawView::usualBasis);
         host.pick(ToolType::Arrow);
         host.down({13, 53});
         host.move({55, 0});
     }},
    // A patch is dragged off another, whose rim it has covered.
    {{.scale = 1, .size = {160, 240}},
     [](CanvasHost& host) {
         host.canvas->setForgiving(true);
         host.draw(ToolType::Mosaic, {18, 113}, {14, 151});
         host.draw(ToolType::Mosaic, {5, 166}, {159, 49});
         host.canvas->selectTools({host.canvas->tools().back()});
         host.window().display();
         host.down({5, 166});
         host.move({44, 186});
     }},
    // A patch beside the picture.
    {{.scale = 1, .size = {160, 240}},
     [](CanvasHost& host) {
         host.draw(ToolType::Mosaic, {4, 2}, {60, 10});
     }},
};

}  // namespace

TEST(MDrawView, ShowsWhatAFullRedrawShows) {
    for (const Case& aCase : cases) {
        CanvasHost host(aCase.options);
        host.canvas->setSnipImage(checkeredPicture(host));
        aCase.act(host);
        const gfx::BitmapRef shown = pixelsOf(host);
        host.canvas->invalidateLayers();
        // Smoothing at the edge of what was drawn again may differ a little.
        EXPECT_LE(largestDifference(*shown, *pixelsOf(host)), 8);
    }
}

}  // namespace kalim::test
