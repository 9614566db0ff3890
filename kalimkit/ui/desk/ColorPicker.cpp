#include "kalimkit/ui/desk/ColorPicker.h"

#include <algorithm>

#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/ui/desk/Eyedropper.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double width = 240;
constexpr double squareHeight = 150;
constexpr double stripHeight = 24;
constexpr double gap = 4;
constexpr double rowHeight = 36;
constexpr double swatchSide = 30;
constexpr double hexWidth = 104;
const gfx::Font hexFont{"", 13};

std::string localized(const char* text) {
    return Environment::current().localizedString(text);
}

}  // namespace

std::shared_ptr<ColorPicker> ColorPicker::show(View& anchor, const Options& options,
                                               Handler handler) {
    if (!anchor.window()) return nullptr;
    const std::shared_ptr<ColorPicker> picker(new ColorPicker(options, std::move(handler)));
    picker->init({});
    const auto popover = Popover::show(anchor, picker, {});
    picker->_popover = popover;
    // The popover holds the picker.
    popover->setCloseHandler([weak = std::weak_ptr(picker)] {
        if (const auto closing = weak.lock()) closing->closed();
    });
    popover->setKeyHandler([picker = picker.get(), weak = std::weak_ptr(popover)](
                               std::string_view key, bool /*isRepeated*/) {
        const auto open = weak.lock();
        if (!open || key != "enter" || !picker->_hex->isFirstResponder()) return false;
        open->close();
        return true;
    });
    return picker;
}

void ColorPicker::init(const gfx::Rect& frame) {
    View::init(frame);
    setAccessibilityLabel(localized("颜色"));
    _color = hueColorOf(_options.color);
    addFields();
    addRow();
    addSwatches(_options.colors);
    addSwatches(recentColors());
    setFrame({0, 0, width, _bottom});
    show(_color, nullptr);
    Environment::current().addAppearanceObserver(
        std::static_pointer_cast<ColorPicker>(shared_from_this()));
}

void ColorPicker::addFields() {
    const struct {
        ColorPart part;
        double height;
        const char* label;
    } parts[] = {{ColorPart::SaturationAndValue, squareHeight, "饱和度和明度"},
                 {ColorPart::Hue, stripHeight, "色相"},
                 {ColorPart::Alpha, stripHeight, "不透明度"}};
    for (const auto& [part, height, label] : parts) {
        const auto field = ColorField::make(part);
        field->setSides(Sides::Fixed);
        field->setAccessibilityLabel(localized(label));
        field->setHandler([this, author = field.get()](const HueColor& color, bool isFinal) {
            show(color, author);
            tell(isFinal);
        });
        _fields.push_back(field);
        if (part == ColorPart::Alpha && !_options.hasAlpha) continue;
        field->setFrame({0, _bottom, width, height});
        addSubview(field);
        _bottom += height + gap;
    }
}

// The sample, the text, and what else a colour comes from.
void ColorPicker::addRow() {
    _sample = {4, _bottom + 4, rowHeight - 8, rowHeight - 8};
    _hexPlate = {rowHeight + 4, _bottom + 3, hexWidth, rowHeight - 6};
    _hex = TextView::initWithFrame(_hexPlate);
    _hex->setFont(hexFont);
    _hex->setInset({8, 7});
    _hex->setTextColor(gfx::makeColor(Palette::current().text));
    _hex->setAccessibilityLabel(localized("十六进制颜色"));
    _hex->setDelegate(std::static_pointer_cast<ColorPicker>(shared_from_this()));
    addSubview(_hex);
    double x = width;
    const auto addButton = [&](const char* icon, const char* tip, std::function<void()> handler) {
        const auto button = DeskButton::make(icon);
        button->setTip(localized(tip));
        button->setHandler(std::move(handler));
        x -= button->frame().size.width;
        button->setFrame({{x, _bottom}, button->frame().size});
        addSubview(button);
    };
    if (!_options.source.expired()) addButton("eyedropper", "取色", [this] { pickFromScreen(); });
    if (_options.offersNone) {
        addButton("nofill", "无", [this] {
            const auto alive = shared_from_this();
            _isChanged = false;
            if (const Handler handler = _handler) handler(std::nullopt, true);
            if (const auto popover = _popover.lock()) popover->close();
        });
    }
    _bottom += rowHeight + gap;
}

void ColorPicker::addSwatches(const std::vector<gfx::Color>& colors) {
    double x = 0;
    for (const gfx::Color& given : colors) {
        const gfx::Color color = _options.hasAlpha ? given : given.withAlpha(1);
        if (x + swatchSide > width) {
            x = 0;
            _bottom += swatchSide;
        }
        const auto button = DeskButton::make({});
        button->setSwatch(color);
        button->setAccessibilityLabel(writtenColor(color));
        button->setFrame({x, _bottom, swatchSide, swatchSide});
        button->setHandler([this, color] { pick(color); });
        addSubview(button);
        _swatches.push_back(button);
        x += swatchSide;
    }
    if (!colors.empty()) _bottom += swatchSide;
}

// ---- colours

// In all that shows it but its author, whose own text or knob stays where the user has it.
void ColorPicker::show(const HueColor& color, const View* author) {
    _color = color;
    for (const auto& field : _fields) {
        if (field.get() != author) field->setColor(color);
    }
    if (_hex.get() != author) _hex->setText(writtenColor(colorOf(color)));
    setNeedsDisplay();
}

void ColorPicker::pick(const gfx::Color& color) {
    show(hueColorOf(color, _color), nullptr);
    tell(true);
}

void ColorPicker::tell(bool isFinal) {
    const auto alive = shared_from_this();
    _isChanged = true;
    _isOpen = !isFinal;
    if (const Handler handler = _handler) handler(colorOf(_color), isFinal);
}

void ColorPicker::textViewDidChange(TextView& view) {
    auto color = colorWritten(view.text());
    if (!color) return;
    if (!_options.hasAlpha) color->alpha = 1;
    show(hueColorOf(*color, _color), &view);
    tell(false);
}

// What has been typed is one step.
void ColorPicker::textViewDidEndEditing(TextView& /*view*/) {
    if (_isOpen) tell(true);
    show(_color, nullptr);
}

void ColorPicker::closed() {
    const auto alive = shared_from_this();
    for (const auto& field : _fields)
        field->giveBack();
    if (_isOpen) tell(true);
    if (_isChanged) rememberColor(colorOf(_color));
    _isChanged = false;
}

void ColorPicker::pickFromScreen() {
    const auto source = _options.source.lock();
    if (!source) return;
    const auto alive = shared_from_this();
    if (const auto popover = _popover.lock()) popover->close();
    Eyedropper::show(*source, [handler = _handler](const std::optional<gfx::Color>& color) {
        if (!color) return;
        rememberColor(*color);
        if (handler) handler(color, true);
    });
}

// ---- drawing

void ColorPicker::appearanceChanged() {
    _hex->setTextColor(gfx::makeColor(Palette::current().text));
}

void ColorPicker::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    drawSwatch(context, mirrored(_sample), colorOf(_color), palette.track);
    context.setStrokeColor(palette.track);
    context.setLineWidth(1);
    context.addPath(
        gfx::roundedRect(mirrored(_hexPlate).inset(0.5, 0.5), DeskControl::cornerRadius - 1));
    context.stroke();
}

}  // namespace kalim::ui
