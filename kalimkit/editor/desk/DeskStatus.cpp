#include "kalimkit/editor/desk/DeskStatus.h"

#include <cmath>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/desk/Menu.h"

namespace kalim {

namespace {

constexpr double zoomStep = 1.25;
constexpr double textSize = 12;
constexpr double stepSide = 24;
constexpr double zoomWidth = 66;
constexpr double labelWidth = 120;
constexpr double labelGap = 8;
// Pixels of the screen for one of the picture.
constexpr double offeredZooms[] = {0.5, 1, 2, 4};
constexpr double sameZoom = 0.005;

std::string whole(double number) {
    return std::to_string(std::lround(number));
}

std::string percent(double magnification) {
    const double shown = magnification * 100;
    if (shown >= 10 || shown <= 0) return whole(shown) + " %";
    return std::to_string(std::lround(shown * 10) / 10) + "." +
           std::to_string(std::lround(shown * 10) % 10) + " %";
}

void setText(ui::Label& label, const std::string& text) {
    if (label.text() != text) label.setText(text);
}

}  // namespace

// ---- making

std::shared_ptr<DeskStatus> DeskStatus::make(CanvasToZoom canvas) {
    const std::shared_ptr<DeskStatus> bar(new DeskStatus);
    bar->begin("状态栏");
    bar->_canvas = std::move(canvas);
    DeskStatus& self = *bar;
    bar->_zoomOut = bar->addButton("minus", "缩小", "-", [&self] {
        self.zoom([](MDrawView& view) { view.zoomBy(1 / zoomStep); });
    });
    bar->_zoom = bar->addButton("", "缩放", "", [&self] { self.openZooms(); });
    bar->_zoomIn = bar->addButton("plus", "放大", "plus", [&self] {
        self.zoom([](MDrawView& view) { view.zoomBy(zoomStep); });
    });
    bar->_size = bar->addLabel();
    bar->_pointer = bar->addLabel();
    bar->_measure = bar->addLabel();
    bar->applyColors();
    return bar;
}

std::shared_ptr<ui::DeskButton> DeskStatus::addButton(const std::string& icon,
                                                      const std::string& label,
                                                      const std::string& key,
                                                      std::function<void()> action) {
    const auto button = makeDeskButton(icon, deskText(label), key, std::move(action));
    addSubview(button);
    return button;
}

void DeskStatus::openZooms() {
    std::vector<ui::MenuItem> items{
        {.text = deskText("显示整张图片"),
         .run = whileThere([this] { zoom([](MDrawView& view) { view.zoomToFit(); }); }),
         .key = "ctrl+0",
         .icon = "zoomfit"}};
    for (const double magnification : offeredZooms) {
        items.push_back({.text = percent(magnification),
                         .run = whileThere([this, magnification] {
                             zoom([magnification](MDrawView& view) {
                                 view.zoomToMagnification(magnification);
                             });
                         }),
                         .key = magnification == 1 ? "ctrl+1" : "",
                         .isChecked = std::abs(_magnification / magnification - 1) < sameZoom});
    }
    ui::Menu::show(*_zoom, std::move(items));
}

std::shared_ptr<ui::Label> DeskStatus::addLabel() {
    const auto label = ui::Label::initWithFrame({});
    label->setFont({"", textSize});
    label->setTextAlignment(ui::TextAlignment::Left);
    addSubview(label);
    return label;
}

void DeskStatus::applyColors() {
    DeskBar::applyColors();
    const gfx::ColorRef color = gfx::makeColor(Palette::current().secondaryText);
    for (const auto& label : {_size, _pointer, _measure})
        label->setTextColor(color);
}

// ---- what it shows

void DeskStatus::show(const DeskReading& reading) {
    _magnification = reading.magnification;
    const bool hasPicture = reading.magnification > 0;
    const std::string zoom = hasPicture ? percent(reading.magnification) : "–";
    if (_zoom->title() != zoom) _zoom->setTitle(zoom);
    _zoom->setAccessibilityValue(zoom);
    for (const auto& button : {_zoomOut, _zoom, _zoomIn})
        button->setEnabled(hasPicture && !reading.isCropping);
    const gfx::Size size = reading.pictureSize;
    setText(*_size, hasPicture ? whole(size.width) + " × " + whole(size.height) : "");
    setText(*_pointer,
            reading.pointer ? whole(reading.pointer->x) + ", " + whole(reading.pointer->y) : "");
    setText(*_measure, reading.measured);
}

void DeskStatus::zoom(const std::function<void(MDrawView& canvas)>& how) const {
    if (MDrawView* const canvas = _canvas()) how(*canvas);
}

std::vector<EditorShell::Named> DeskStatus::views() const {
    return {{"zoomOut", _zoomOut}, {"zoom", _zoom},       {"zoomIn", _zoomIn},
            {"size", _size},       {"pointer", _pointer}, {"measure", _measure}};
}

// ---- layout

void DeskStatus::layoutSubviews() {
    const ui::EdgeInsets safe = safeAreaInsets();
    const double height = bounds().size.height - safe.bottom;
    double left = safe.left + DeskLayout::barMargin;
    const auto place = [&](ui::View& view, double width, double side) {
        view.setFrame({left, (height - side) / 2, width, side});
        left += width;
    };
    place(*_zoomOut, stepSide, stepSide);
    place(*_zoom, zoomWidth, stepSide);
    place(*_zoomIn, stepSide, stepSide);
    for (const auto& label : {_size, _pointer, _measure}) {
        left += labelGap;
        place(*label, labelWidth, height);
    }
}

}  // namespace kalim
