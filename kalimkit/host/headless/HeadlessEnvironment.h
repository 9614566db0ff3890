#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/host/headless/MemoryPhotoLibrary.h"
#include "kalimkit/theme/Languages.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// A phone without a screen, for tests, scenarios and programs that draw in memory. Time stands
// still until somebody moves its run loop; the wall clock goes with it from a fixed moment on, so
// that every run is the same.
class KALIM_API HeadlessEnvironment : public ui::Environment {
public:
    using Picked = std::function<void(std::optional<gfx::ImageRef>)>;

    // The screen is 390 x 844 points at the scale, pixels per point. The device must outlive the
    // environment and all that draws in it.
    HeadlessEnvironment(gfx::Device& device, double scale);

    // Moves the clock by some seconds, running all that is due on the way.
    void wait(double seconds) { _loop.advanceTo(_loop.now() + seconds); }
    // The alerts since this was asked last, oldest first, without their completions.
    std::vector<ui::Alert> takeAlerts();
    // What an assistive technology would have said since this was asked last, oldest first.
    std::vector<std::string> takeAnnouncements() { return std::exchange(_announcements, {}); }
    void announce(const std::string& text) override { _announcements.push_back(text); }
    // Whether alerts are shown in the key window and wait for an answer there. Off at first: each
    // is answered with its first button as soon as it is presented.
    void setShowsAlerts(bool shows) { _showsAlerts = shows; }
    // Whether a question for a picture waits. To answer it, null stands for a picture without a
    // bitmap, nothing for a user who cancels; false when none was asked for.
    bool isPicking() const { return static_cast<bool>(_picked); }
    bool answerPick(const std::optional<gfx::ImageRef>& picked);

    gfx::Device& device() override { return _device; }
    ui::Screen screen() const override { return _screen; }
    // Windows that exist already keep the scale they were made with.
    void setScreen(const ui::Screen& screen) { _screen = screen; }
    ui::RunLoop& runLoop() override { return _loop; }
    double wallClock() const override;
    // It is 2560 x 1440 pixels at first.
    std::optional<gfx::Size> areaBudget() const override { return _areaBudget; }
    void setAreaBudget(std::optional<gfx::Size> budget) { _areaBudget = budget; }
    // The machine's own figures where it is a Linux, unless a test has set others.
    std::optional<double> usedMemory() const override;
    std::optional<double> availableMemory() const override;
    void setMemory(std::optional<double> used, std::optional<double> available);
    // Texts are the keys at first, those of setLocalizedString() before all others.
    std::string localizedString(const std::string& key) const override;
    std::string localizedCount(const std::string& key, std::int64_t count) const override;
    // See Languages::choose.
    void setLanguage(std::string_view locale);
    std::string language() const override { return _languages ? _languages->chosen() : ""; }
    void setLocalizedString(const std::string& key, std::string text);
    void presentAlert(const ui::Alert& alert) override;
    // What was ever set, by key.
    const std::map<std::string, bool>& userDefaults() const { return _defaults; }
    std::optional<bool> userDefault(const std::string& key) const override;
    void setUserDefault(const std::string& key, bool value) override { _defaults[key] = value; }
    void setStatusBarHidden(bool hidden, bool /*animated*/) override { _hidesStatusBar = hidden; }
    bool hidesStatusBar() const { return _hidesStatusBar; }
    void setStatusBarStyle(int style) override { _statusBarStyle = style; }
    int statusBarStyle() const { return _statusBarStyle; }
    bool isPhotoLibraryAvailable() const override { return _hasPhotoLibrary; }
    void setPhotoLibraryAvailable(bool available) { _hasPhotoLibrary = available; }
    // Waits for answerPick().
    void pickImage(const Picked& picked) override { _picked = picked; }
    // Each object is another, and all have the same contents.
    std::shared_ptr<ui::PhotoLibrary> makePhotoLibrary() override {
        return std::make_shared<MemoryPhotoLibrary>(_photos);
    }
    const MemoryPhotoLibrary::Contents& photos() const { return *_photos; }
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
    // Nothing while no language is chosen.
    std::optional<Languages> _languages;
    std::vector<ui::Alert> _alerts;
    std::vector<std::string> _announcements;
    bool _showsAlerts = false;
    std::string _clipboard;
    std::map<std::string, bool> _defaults;
    bool _hidesStatusBar = false;
    int _statusBarStyle = 0;
    bool _hasPhotoLibrary = true;
    // Empty while nobody asks.
    Picked _picked;
    std::shared_ptr<MemoryPhotoLibrary::Contents> _photos =
        std::make_shared<MemoryPhotoLibrary::Contents>();
};

}  // namespace kalim
