#include "kalimkit/crop/EditImageCropGridView.h"

#include "kalimkit/gfx/Color.h"

namespace kalim {

namespace {

constexpr double borderWidth = 1;
constexpr double markerWidth = 2;
constexpr double markerLength = 20;
constexpr double thirdWidth = 0.5;

template <typename Views>
void place(const Views& views, std::initializer_list<gfx::Rect> frames) {
    auto frame = frames.begin();
    for (const auto& view : views)
        view->setFrame(*frame++);
}

}  // namespace

std::shared_ptr<EditImageCropGridView> EditImageCropGridView::initWithFrame(
    const gfx::Rect& frame) {
    struct Constructible : EditImageCropGridView {};
    const std::shared_ptr<EditImageCropGridView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageCropGridView::init(const gfx::Rect& frame) {
    View::init(frame);
    setUserInteractionEnabled(false);
    setup();
    layoutLines();
}

void EditImageCropGridView::setup() {
    const auto create = [this](auto& views) {
        for (auto& view : views)
            view = createLineView();
    };
    create(_borderGridLines);
    create(_tlLineView);
    create(_trLineView);
    create(_brLineView);
    create(_blLineView);
    create(_horizontalGridLines);
    create(_verticalGridLines);
}

std::shared_ptr<ui::View> EditImageCropGridView::createLineView() {
    const std::shared_ptr<ui::View> line = ui::View::initWithFrame({});
    line->setBackgroundColor(gfx::makeColor(1, 1, 1));
    // So that it is seen on white pictures, too.
    line->setShadow(gfx::Shadow{{0, 0}, 2, {0, 0, 0, 0.9}});
    addSubview(line);
    return line;
}

void EditImageCropGridView::layoutLines() {
    const auto [w, h] = bounds().size;
    constexpr double b = borderWidth;
    constexpr double m = markerWidth;
    constexpr double l = markerLength;
    place(_borderGridLines, {{0, 0, w, b}, {w - b, 0, b, h}, {0, h - b, w, b}, {0, 0, b, h}});
    place(_tlLineView, {{-m, -m, m, l}, {-m, -m, l, m}});
    place(_trLineView, {{w, -m, m, l}, {w - l + m, -m, l, m}});
    place(_brLineView, {{w - l + m, h, l, m}, {w, h - l + m, m, l}});
    place(_blLineView, {{-m, h - l + m, m, l}, {-m, h, l, m}});
    place(_horizontalGridLines, {{0, h / 3, w, thirdWidth}, {0, 2 * h / 3, w, thirdWidth}});
    place(_verticalGridLines, {{w / 3, 0, thirdWidth, h}, {2 * w / 3, 0, thirdWidth, h}});
}

}  // namespace kalim
