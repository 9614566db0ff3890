#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/control/TextViewDelegate.h"
#include "kalimkit/ui/desk/ColorFields.h"
#include "kalimkit/ui/desk/DeskButton.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Appearance.h"

namespace kalim::ui {

// A popover that picks any colour: saturation and value in a square, the hue and the alpha on
// strips, as hexadecimal text, from the host's colours and those picked lately, and from what is
// shown. What has been picked is remembered when the popover closes.
class KALIM_API ColorPicker : public View, public TextViewDelegate, public AppearanceObserver {
public:
    struct Options {
        gfx::Color color;
        // Colours with an alpha may be picked.
        bool hasAlpha = false;
        // "None" is offered: the handler hears nothing instead of a colour.
        bool offersNone = false;
        // Shown above those picked lately.
        std::vector<gfx::Color> colors = {};
        // Where the eyedropper picks from, as the canvas; without one there is none.
        std::weak_ptr<View> source = {};
    };
    // Hears of each colour on the way as well, and then once of the last: one step to undo.
    using Handler = std::function<void(const std::optional<gfx::Color>& color, bool isFinal)>;

    // Null, and nothing happens, for a view in no window.
    static std::shared_ptr<ColorPicker> show(View& anchor, const Options& options, Handler handler);

    gfx::Color color() const { return colorOf(_color); }
    const std::shared_ptr<TextView>& hexField() const { return _hex; }
    const std::shared_ptr<ColorField>& field(ColorPart part) const {
        return _fields[static_cast<std::size_t>(part)];
    }
    // The host's colours and then those picked lately.
    const std::vector<std::shared_ptr<DeskButton>>& swatches() const { return _swatches; }
    // Closes the popover and lets the user pick from what is shown. Ignored without a source.
    void pickFromScreen();

    void appearanceChanged() override;
    void textViewDidChange(TextView& view) override;
    void textViewDidEndEditing(TextView& view) override;

protected:
    ColorPicker(Options options, Handler handler)
        : _options(std::move(options)), _handler(std::move(handler)) {}
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void addFields();
    void addRow();
    void addSwatches(const std::vector<gfx::Color>& colors);
    void show(const HueColor& color, const View* author);
    void pick(const gfx::Color& color);
    void tell(bool isFinal);
    void closed();

    Options _options;
    Handler _handler;
    HueColor _color;
    bool _isChanged = false;
    // The last that was told was not final.
    bool _isOpen = false;
    std::weak_ptr<Popover> _popover;
    std::vector<std::shared_ptr<ColorField>> _fields;
    std::shared_ptr<TextView> _hex;
    std::vector<std::shared_ptr<DeskButton>> _swatches;
    // Where the next part goes.
    double _bottom = 0;
    gfx::Rect _sample;
    gfx::Rect _hexPlate;
};

}  // namespace kalim::ui
