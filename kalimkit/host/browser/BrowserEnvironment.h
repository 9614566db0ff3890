#pragma once

#include "kalimkit/backend/html/HtmlDevice.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

// The page that the library runs in. Time moves when the page says so.
class BrowserEnvironment : public ui::Environment {
public:
    explicit BrowserEnvironment(double scale) : _screen{scale, {}, false} {}

    gfx::Device& device() override { return _device; }
    ui::Screen screen() const override { return _screen; }
    // Windows keep the scale that they have until they get another size.
    void setScale(double scale) { _screen.scale = scale; }
    ui::RunLoop& runLoop() override { return _loop; }
    double wallClock() const override;
    std::optional<gfx::Size> areaBudget() const override { return gfx::Size{2560, 1440}; }
    std::string localizedString(const std::string& key) const override;
    // Tells the page, and answers with the first button at once.
    void presentAlert(const ui::Alert& alert) override;
    std::string clipboardText() override;
    void setClipboardText(const std::string& text) override;
    void textInputChanged(ui::TextView* focused) override;

private:
    gfx::HtmlDevice _device;
    ui::Screen _screen;
    ui::RunLoop _loop;
};

}  // namespace kalim
