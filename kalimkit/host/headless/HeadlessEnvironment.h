#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

// A phone without a screen, for tests, scenarios and programs that draw in memory. Time stands
// still until somebody moves its run loop; the wall clock goes with it from a fixed moment on, so
// that every run is the same.
class KALIM_API HeadlessEnvironment : public ui::Environment {
public:
    // The screen is 390 x 844 points at the scale, pixels per point. The device must outlive the
    // environment and all that draws in it.
    HeadlessEnvironment(gfx::Device& device, double scale);

    // Moves the clock by some seconds, running all that is due on the way.
    void wait(double seconds) { _loop.advanceTo(_loop.now() + seconds); }
    // The alerts since this was asked last, oldest first, without their completions: each was
    // answered with its first button as soon as it was presented.
    std::vector<ui::Alert> takeAlerts();

    gfx::Device& device() override { return _device; }
    ui::Screen screen() const override { return _screen; }
    // Windows that exist already keep the scale they were made with.
    void setScreen(const ui::Screen& screen) { _screen = screen; }
    ui::RunLoop& runLoop() override { return _loop; }
    double wallClock() const override;
    // 2560 x 1440 pixels at first.
    std::optional<gfx::Size> areaBudget() const override { return _areaBudget; }
    void setAreaBudget(std::optional<gfx::Size> budget) { _areaBudget = budget; }
    // The machine's own figures where it is a Linux, unless a test has set others.
    std::optional<double> usedMemory() const override;
    std::optional<double> availableMemory() const override;
    void setMemory(std::optional<double> used, std::optional<double> available);
    std::string localizedString(const std::string& key) const override;
    void setLocalizedString(const std::string& key, std::string text);
    void presentAlert(const ui::Alert& alert) override;
    // Kept in memory.
    std::string clipboardText() override { return _clipboard; }
    void setClipboardText(const std::string& text) override { _clipboard = text; }
    // A keyboard that is up goes with the focus.
    void textInputChanged(ui::TextView* focused) override;

private:
    gfx::Device& _device;
    ui::Screen _screen;
    ui::RunLoop _loop;
    std::optional<gfx::Size> _areaBudget = gfx::Size{2560, 1440};
    bool _hasSetMemory = false;
    std::optional<double> _usedMemory;
    std::optional<double> _availableMemory;
    std::map<std::string, std::string> _texts;
    std::vector<ui::Alert> _alerts;
    std::string _clipboard;
};

}  // namespace kalim
