#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/TextView.h"
#include "kalimkit/ui/environment/Appearance.h"

namespace kalim::ui {

// A field for a short text, such as an emoji, below a view. Enter takes what was typed, and so does
// a press anywhere else; Escape takes nothing.
class KALIM_API TextPrompt : public View, public AppearanceObserver {
public:
    // Hears once of a text that is not empty, without the white space around it.
    using Handler = std::function<void(const std::string& text)>;

    // Null, and nothing happens, for a view in no window.
    static std::shared_ptr<TextPrompt> show(View& anchor, const std::string& label,
                                            Handler handler);

    void appearanceChanged() override;

protected:
    TextPrompt(std::string label, Handler handler)
        : _label(std::move(label)), _handler(std::move(handler)) {}
    void init(const gfx::Rect& frame) override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    void closed();

    std::string _label;
    // None once Escape was pressed.
    Handler _handler;
    std::shared_ptr<TextView> _field;
};

}  // namespace kalim::ui
