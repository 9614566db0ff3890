#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "kalimkit/host/browser/DownloadPhotoLibrary.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// The page that the library runs in; the window on it is the screen. Time moves when the page says
// so. Texts are the page's own where it has some, else in English where the language is not
// Chinese.
class BrowserEnvironment : public ui::Environment {
public:
    // Of the texts from now on, such as "en-GB".
    void setLanguage(std::string_view language);

    gfx::Device& device() override { return _device; }
    ui::Screen screen() const override { return _screen; }
    // The window's size, and what of it is not safe to put controls into, in points. Windows keep
    // the scale that they have until they get another size.
    void setScreen(gfx::Size size, double scale, const ui::EdgeInsets& safeArea = {});
    ui::RunLoop& runLoop() override { return _loop; }
    double wallClock() const override;
    // Four times the screen, and no less than 2560 x 1440 pixels.
    std::optional<gfx::Size> areaBudget() const override;
    std::string localizedString(const std::string& key) const override;
    void presentAlert(const ui::Alert& alert) override;
    // Kept by the page for as long as it may.
    std::optional<bool> userDefault(const std::string& key) const override;
    void setUserDefault(const std::string& key, bool value) override;
    bool isPhotoLibraryAvailable() const override { return true; }
    // Who asks while another waits for an answer ends that one's waiting.
    void pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) override;
    // The page's answer; ignored when nobody waits for one.
    void answerPick(const std::optional<gfx::ImageRef>& image);
    // What is written becomes a download.
    std::shared_ptr<ui::PhotoLibrary> makePhotoLibrary() override {
        return std::make_shared<DownloadPhotoLibrary>(_photos);
    }
    std::string clipboardText() override;
    void setClipboardText(const std::string& text) override;
    void textInputChanged(ui::TextView* focused) override;

private:
    gfx::HtmlDevice _device;
    ui::Screen _screen;
    ui::RunLoop _loop;
    bool _isEnglish = false;
    std::function<void(std::optional<gfx::ImageRef>)> _picked;
    std::shared_ptr<DownloadPhotoLibrary::Contents> _photos =
        std::make_shared<DownloadPhotoLibrary::Contents>();
};

}  // namespace kalim
