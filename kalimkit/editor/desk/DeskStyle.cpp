#include "kalimkit/editor/desk/DeskStyle.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/ColorName.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/desk/ColorPicker.h"
#include "kalimkit/ui/desk/Menu.h"

namespace kalim {

namespace {

constexpr double groupGap = 12;
constexpr double swatchWidth = 30;
constexpr double widthOfSlider = 120;
constexpr double narrowSlider = 80;
constexpr double iconWidth = 26;
constexpr double thinnest = 1;
constexpr double thickest = 40;

}  // namespace

// ---- making

std::shared_ptr<DeskStyle> DeskStyle::make(TesselViewController& editor, EditorRemote& remote) {
    const std::shared_ptr<DeskStyle> bar(new DeskStyle);
    bar->begin("样式");
    bar->_editor = &editor;
    bar->_remote = &remote;
    bar->_scroll = ui::ScrollView::initWithFrame({});
    bar->_scroll->setScrolledByWheel(true);
    bar->_scroll->setDelegate(std::static_pointer_cast<DeskStyle>(bar->shared_from_this()));
    bar->addSubview(bar->_scroll);
    for (const bool isAtEnd : {false, true}) {
        bar->_marks.push_back(
            DeskScrollMark::make(bar->_scroll, DeskScrollMark::Way::Sideways, isAtEnd));
        bar->addSubview(bar->_marks.back());
    }
    bar->addColors();
    bar->addWidth();
    bar->addHiding();
    return bar;
}

void DeskStyle::addColors() {
    _offered = _editor->offer().colors();
    for (const gfx::ColorRef& color : _offered) {
        const auto swatch = ui::DeskButton::make({});
        swatch->setSwatch(*color);
        swatch->setTip(colorName(color));
        swatch->setAccessibilityRole(ui::AccessibilityRole::RadioButton);
        swatch->setHandler([this, color] { _remote->chooseColor(color); });
        _scroll->addSubview(swatch);
        _swatches.push_back(swatch);
    }
    _color = ui::DeskButton::make({});
    _color->setOpens(true);
    _color->setTip(deskText("其他颜色"));
    _color->setHandler([this] { openColors(); });
    _scroll->addSubview(_color);
}

void DeskStyle::addWidth() {
    _widthIcon = ui::DeskButton::make("width");
    _widthIcon->setUserInteractionEnabled(false);
    _widthIcon->setAccessibilityHidden(true);
    _scroll->addSubview(_widthIcon);
    _width = ui::Slider::make(thinnest, thickest);
    _width->setStep(1);
    _width->setStops(_editor->offer().widths());
    _width->setTip(deskText("粗细"), "[  ]");
    _width->setSpeaker([](double width) { return std::to_string(std::lround(width)); });
    _width->setHandler([this](double width, bool isFinal) { chooseWidth(width, isFinal); });
    _scroll->addSubview(_width);
}

void DeskStyle::addHiding() {
    _hiding = ui::DeskButton::make({}, deskText(hidingStyles().front().text));
    _hiding->setOpens(true);
    _hiding->setTip(deskText("遮盖方式"));
    _hiding->setHandler([this] { openHidingStyles(); });
    _scroll->addSubview(_hiding);
}

// ---- choosing

void DeskStyle::openColors() {
    std::vector<gfx::Color> colors;
    for (const gfx::ColorRef& color : _offered)
        colors.push_back(*color);
    const gfx::Color present = _reading.color ? *_reading.color : gfx::Color{};
    ui::ColorPicker::show(
        *_color, {.color = present, .colors = std::move(colors), .source = _editor->drawView()},
        [this, weakSelf = weak_from_this()](const std::optional<gfx::Color>& color, bool isFinal) {
            const auto alive = weakSelf.lock();
            if (alive && color) chooseColor(*color, isFinal);
        });
}

void DeskStyle::openHidingStyles() {
    std::vector<ui::MenuItem> items;
    for (const HidingStyle& style : hidingStyles()) {
        items.push_back({.text = deskText(style.text),
                         .run = whileThere([this, drawType = style.drawType] {
                             _remote->chooseHidingStyle(drawType);
                         }),
                         .isChecked = style.drawType == _reading.drawType});
    }
    ui::Menu::show(*_hiding, std::move(items));
}

void DeskStyle::chooseColor(const gfx::Color& color, bool isFinal) {
    const gfx::ColorRef made = gfx::makeColor(color);
    choose({color.hex(), _reading.color ? _reading.color->hex() : std::string(),
            [made](MDrawView& canvas) { canvas.setDrawColorIsTranslucent(made, false); },
            [this, made] { _remote->chooseColor(made); }},
           isFinal);
}

void DeskStyle::chooseWidth(double width, bool isFinal) {
    choose({width, std::clamp(_reading.lineWidth, thinnest, thickest),
            [width](MDrawView& canvas) { canvas.setDrawLineWidth(width); },
            [this, width] { _remote->chooseLineWidth(width); }},
           isFinal);
}

void DeskStyle::chooseProperty(const std::string& name, const ToolPropertyValue& value,
                               bool isFinal) {
    ToolPropertyValue before;
    for (const auto& [property, present] : _reading.properties) {
        if (property->name == name) before = present.value_or(ToolPropertyValue(property->usual));
    }
    choose({value, before, [&](MDrawView& canvas) { canvas.setToolProperty(name, value); },
            [&] { _remote->chooseProperty(name, value); }},
           isFinal);
}

// What is selected takes it as one step in the end, and none where that is what it had.
void DeskStyle::choose(const Choice& choice, bool isFinal) {
    MDrawView& canvas = *_editor->drawView();
    if (!isFinal && (_reading.hasSelection || _before)) {
        if (!canvas.forgiving()) return;
        if (!_before) _before = choice.before;
        canvas.beginRestyling();
        choice.show(canvas);
        return _editor->tellShell();
    }
    const auto before = isFinal ? std::exchange(_before, {}) : std::nullopt;
    const bool isWhole = !before || canvas.endRestyling();
    if (isWhole && (!before || *before != choice.value)) return choice.take();
    _editor->tellShell();
}

// ---- what it shows

void DeskStyle::show(const DeskReading& reading) {
    const bool wasHiding = _reading.isHiding;
    const bool hadColor = _reading.hasColor;
    _reading = reading;
    for (std::size_t i = 0; i < _swatches.size(); ++i)
        _swatches[i]->setSelected(gfx::equalColors(_offered[i], reading.color));
    const auto color = reading.color ? std::optional(*reading.color) : std::nullopt;
    if (_color->swatch() != color) _color->setSwatch(color);
    _width->setValue(reading.lineWidth);
    if (const HidingStyle* const style = hidingStyleOf(reading.drawType)) {
        const std::string title = deskText(style->text);
        if (_hiding->title() != title) _hiding->setTitle(title);
    }
    showProperties(reading);
    if (wasHiding != reading.isHiding || hadColor != reading.hasColor) setNeedsLayout();
}

// What a finger is on stays until that lifts.
bool DeskStyle::isPropertyHeld() const {
    return std::ranges::any_of(_properties, [](const auto& property) {
        return property && std::ranges::any_of(property->views(), [](const auto& named) {
                   const auto control = std::dynamic_pointer_cast<ui::Control>(named.view);
                   return control && control->isTracking();
               });
    });
}

void DeskStyle::showProperties(const DeskReading& reading) {
    std::vector<const ToolProperty*> wanted;
    for (const auto& [property, value] : reading.properties)
        wanted.push_back(property);
    if (wanted != _shown) {
        if (isPropertyHeld()) return;
        makeProperties(wanted);
    }
    for (std::size_t i = 0; i < _properties.size(); ++i) {
        if (_properties[i]) _properties[i]->show(reading.properties[i].second);
    }
    setNeedsLayout();
}

void DeskStyle::makeProperties(const std::vector<const ToolProperty*>& wanted) {
    for (const auto& each : _properties) {
        for (const auto& [path, view] : each ? each->views() : std::vector<EditorShell::Named>())
            view->removeFromSuperview();
    }
    _properties.clear();
    const auto choose = [this](const std::string& name, const ToolPropertyValue& value,
                               bool isFinal) { chooseProperty(name, value, isFinal); };
    for (const ToolProperty* const property : wanted) {
        _properties.push_back(DeskProperty::make(*property, choose, _editor->drawView()));
        if (!_properties.back()) continue;
        for (const auto& [path, view] : _properties.back()->views()) {
            if (!view->superview()) _scroll->addSubview(view);
            const auto control = std::dynamic_pointer_cast<ui::Control>(view);
            if (!control) continue;
            const auto release =
                [step = whileThere([this] { _editor->tellShell(); })](ui::Control&) { step(); };
            for (const auto event :
                 {ui::ControlEvent::TouchUpInside, ui::ControlEvent::TouchUpOutside,
                  ui::ControlEvent::TouchCancel})
                control->addAction(event, release);
        }
    }
    _shown = wanted;
}

std::vector<EditorShell::Named> DeskStyle::views() const {
    std::vector<EditorShell::Named> all;
    for (std::size_t i = 0; i < _swatches.size(); ++i)
        all.push_back({"colors." + std::to_string(i), _swatches[i]});
    all.push_back({"color", _color});
    all.push_back({"width", _width});
    all.push_back({"hiding", _hiding});
    all.push_back({"back", _marks.front()});
    all.push_back({"more", _marks.back()});
    for (const auto& property : _properties) {
        if (!property) continue;
        for (auto& named : property->views())
            all.push_back(std::move(named));
    }
    return all;
}

void DeskStyle::scrollViewDidScroll(ui::ScrollView& /*view*/) {
    for (const auto& mark : _marks)
        mark->follow();
}

// ---- layout

// Answers where it ends.
double DeskStyle::arrange(double height, bool showsSwatches) {
    const double side = DeskSizes::current().button;
    double left = DeskLayout::barMargin;
    const auto place = [&](ui::View& view, double width, double viewHeight) {
        const gfx::Rect frame{left, (height - viewHeight) / 2, width, viewHeight};
        if (view.frame() != frame) view.setFrame(frame);
        left += width;
    };
    const bool hasColor = _reading.hasColor;
    for (const auto& swatch : _swatches) {
        swatch->setHidden(!hasColor || !showsSwatches);
        if (!swatch->isHidden()) place(*swatch, swatchWidth, side);
    }
    for (const std::shared_ptr<ui::View>& view :
         {std::shared_ptr<ui::View>(_color), std::shared_ptr<ui::View>(_widthIcon),
          std::shared_ptr<ui::View>(_width)})
        view->setHidden(!hasColor);
    if (hasColor) {
        place(*_color, _color->fittingSize().width, side);
        left += groupGap;
        place(*_widthIcon, iconWidth, side);
        place(*_width, showsSwatches ? widthOfSlider : narrowSlider, ui::Slider::height);
        left += groupGap;
    }
    _hiding->setHidden(!_reading.isHiding);
    if (_reading.isHiding) {
        place(*_hiding, _hiding->fittingSize().width, side);
        left += groupGap;
    }
    for (const auto& property : _properties) {
        if (!property) continue;
        for (const auto& [path, view] : property->views()) {
            if (view->superview() == _scroll.get())
                place(*view, view->bounds().size.width, view->bounds().size.height);
        }
        left += groupGap;
    }
    return left;
}

void DeskStyle::layoutSubviews() {
    const ui::EdgeInsets safe = safeAreaInsets();
    const double height = bounds().size.height - safe.top;
    _scroll->setFrame({safe.left, safe.top, bounds().size.width - safe.left, height - 1});
    double left = arrange(height, true);
    // The colours of the dots are in the picker as well.
    if (left > _scroll->bounds().size.width) left = arrange(height, false);
    _scroll->setContentSize({left, height - 1});
    // Another tool may have less to choose.
    const double offset = _scroll->horizontalRange().clamped(_scroll->contentOffset().x);
    if (offset != _scroll->contentOffset().x) _scroll->setContentOffset({offset, 0});
    scrollViewDidScroll(*_scroll);
}

}  // namespace kalim
