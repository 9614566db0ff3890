#include "tests/hiding/PairStage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "kalimkit/codec/Encode.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/SavedDocument.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawMagnifier.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim::test {

PairStage::PairStage(const PairSource& source, bool isOther)
    : CanvasHost({.scale = 2, .size = {160, 200}}), _source(source) {
    OpenedFile opened = openBytes(source.make(isOther), source.name, {.isFlat = true});
    EXPECT_FALSE(opened.error) << opened.error.value_or("");
    picture = _origins.make(environment().device(), opened);
    canvas->setSnipImage(picture);
    window().display();
}

gfx::Rect PairStage::secret() const {
    const gfx::PixelRect& rect = _source.secret;
    return gfx::Rect(rect.x, rect.y, rect.width, rect.height);
}

gfx::Rect PairStage::onCanvas(const gfx::Rect& pixels) const {
    const gfx::Rect place = canvas->bgImgRect();
    const double points = place.size.width / picture->pixelSize().width;
    return gfx::Rect(place.minX() + pixels.minX() * points, place.minY() + pixels.minY() * points,
                     pixels.size.width * points, pixels.size.height * points);
}

// Canvas points.
ToolRef PairStage::add(const ToolRef& tool, const gfx::Rect& box) {
    // Ink needs a few points.
    std::vector<gfx::Point> way;
    for (int i = 1; i <= 8; ++i) {
        const double across = i % 2 == 0 ? i / 8.0 : 1 - i / 8.0;
        way.push_back(box.origin + gfx::Point{box.size.width * across, box.size.height * i / 8});
    }
    tool->drawThrough(way);
    EXPECT_TRUE(canvas->addTool(tool)) << _source.name << ": " << tool->toolClass().name;
    return tool;
}

ToolRef PairStage::patch(MosaicStyle style, const gfx::Rect& pixels) {
    const gfx::Rect box = onCanvas(pixels);
    const auto tool = MDrawMosiac::initWithStartPoint(box.origin);
    tool->setDrawType(static_cast<std::uint64_t>(style));
    tool->setColor(gfx::makeColor(0.2, 0.4, 0.9));
    return add(tool, box);
}

ToolRef PairStage::turnedPatch(MosaicStyle style, const gfx::Rect& pixels, double angle) {
    canvas->setForgiving(true);
    const double along = std::abs(std::cos(angle));
    const double across = std::abs(std::sin(angle));
    const gfx::Size grown{pixels.size.width * along + pixels.size.height * across,
                          pixels.size.width * across + pixels.size.height * along};
    const ToolRef tool = patch(style, pixels.inset((pixels.size.width - grown.width) / 2,
                                                   (pixels.size.height - grown.height) / 2));
    canvas->selectTools({tool});
    canvas->handleRotationGesture(ui::GestureState::Began, 0);
    canvas->handleRotationGesture(ui::GestureState::Changed, angle);
    canvas->handleRotationGesture(ui::GestureState::Ended, angle);
    EXPECT_EQ(tool->rotateAngle(), angle);
    canvas->selectNone();
    return tool;
}

void PairStage::magnify(const gfx::Rect& pixels) {
    const gfx::Rect shown = onCanvas(pixels);
    const double side = 3 * std::max(shown.size.width, shown.size.height);
    const gfx::Rect circle(shown.maxX(), shown.minY() - side / 3, side, side);
    const ToolRef tool = MDrawMagnifier::initWithStartPoint(circle.origin);
    tool->setColor(gfx::makeColor(1, 0, 0));
    tool->takeDetail("place", std::vector<gfx::Point>{shown.center()});
    tool->setRotateAngle(0.5);
    tool->drawThrough(std::vector<gfx::Point>{{circle.maxX(), circle.maxY()}});
    EXPECT_TRUE(canvas->addTool(tool));
}

void PairStage::drawAcross() {
    const ToolClass* const kinds[] = {&MDrawArrow::Class(), &MDrawEllipse::Class(),
                                      &MDrawFreeline::Class(), &MDrawText::Class()};
    double shift = -14;
    for (const ToolClass* const kind : kinds) {
        const gfx::Rect box = onCanvas(secret().inset(-7, -7).offset({shift, shift / 2}));
        const ToolRef tool = kind->makeWithStartPoint(box.origin);
        tool->setColor(gfx::makeColor(1, 0.2, 0.1, shift < 0 ? 0.5 : 1));
        if (tool->words()) tool->setWords("秘密 x");
        add(tool, box);
        shift += 9;
    }
}

void PairStage::cutThrough() {
    const gfx::PixelRect& rect = _source.secret;
    const gfx::PixelSize size = picture->pixelSize();
    const int left = rect.x + rect.width / 2;
    EXPECT_TRUE(
        canvas->resetPictureCut({gfx::Rect(left, 3, size.width - left, size.height - 5), 1}));
}

codec::Bytes PairStage::saved(const gfx::ImageRef& image,
                              const codec::SavingOptions& options) const {
    const codec::SavedPicture file = encodeExport(image, *canvas, _origins, options);
    EXPECT_FALSE(file.error) << _source.name << ": " << file.error.value_or("");
    return file.bytes;
}

codec::Bytes PairStage::sealed(codec::Metadata metadata) {
    std::string text;
    const auto problem = documentTextOf(*canvas, _origins, {true, false, metadata}, "", text);
    EXPECT_FALSE(problem) << _source.name << ": " << problem.value_or("");
    return {text.begin(), text.end()};
}

codec::Bytes PairStage::plain(const gfx::ImageRef& image) {
    codec::Bytes bytes;
    EXPECT_FALSE(codec::encodePng(*image->pixels(), bytes));
    return bytes;
}

}  // namespace kalim::test
