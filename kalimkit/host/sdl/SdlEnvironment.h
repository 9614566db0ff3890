#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

class PictureChooser;
class UserDefaults;

// The desktop, to which the window is the screen. Texts are in English where the locale's language
// is neither Chinese nor left open. User defaults are kept in a file of the user's configuration,
// and pictures in his folder for them.
class KALIM_API SdlEnvironment : public ui::Environment {
public:
    // Pixels per point. Draws with Cairo.
    explicit SdlEnvironment(double scale);
    ~SdlEnvironment() override;

    gfx::Device& device() override { return *_device; }
    ui::Screen screen() const override { return _screen; }
    // The window's size; it becomes the native size of the screen.
    void setScreenSize(gfx::PixelSize size) { _screen.nativeSize = size; }
    ui::RunLoop& runLoop() override { return _loop; }
    double wallClock() const override;
    // Four times the screen, and no less than 2560 x 1440 pixels.
    std::optional<gfx::Size> areaBudget() const override;
    std::string localizedString(const std::string& key) const override;
    void presentAlert(const ui::Alert& alert) override;
    bool isPhotoLibraryAvailable() const override { return true; }
    // Without a dialog to ask with, an alert says so, and it counts as cancelled.
    void pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) override;
    std::shared_ptr<ui::PhotoLibrary> makePhotoLibrary() override;
    std::string clipboardText() override;
    void setClipboardText(const std::string& text) override;
    // Whether the clipboard holds what this process has put there last.
    bool isOwnTextOnClipboard();
    std::optional<bool> userDefault(const std::string& key) const override;
    void setUserDefault(const std::string& key, bool value) override;

private:
    std::shared_ptr<gfx::Device> _device;
    ui::Screen _screen;
    ui::RunLoop _loop;
    bool _isEnglish;
    std::unique_ptr<UserDefaults> _userDefaults;
    std::unique_ptr<PictureChooser> _chooser;
    std::string _ownClipboardText;
};

}  // namespace kalim
