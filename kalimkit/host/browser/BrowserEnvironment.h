#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "kalimkit/host/browser/DownloadPhotoLibrary.h"
#include "kalimkit/host/seat/SeatEnvironment.h"

namespace kalim {

// The page that the library runs in. Time moves when the page says
// so. Texts are the page's, which fetches those of the language; the keys where it has none.
class BrowserEnvironment : public SeatEnvironment {
public:
    gfx::Device& device() override { return _device; }
    using SeatEnvironment::setScreen;
    // The window's size, and what of it is not safe to put controls into, in points. Windows keep
    // the scale that they have until they get another size.
    void setScreen(gfx::Size size, double scale, const ui::EdgeInsets& safeArea = {});
    double wallClock() const override;
    std::string localizedString(const std::string& key) const override;
    std::string localizedCount(const std::string& key, std::int64_t count) const override;
    // Kept by the page for as long as it may.
    std::optional<bool> userDefault(const std::string& key) const override;
    void setUserDefault(const std::string& key, bool value) override;
    std::optional<std::string> userSetting(const std::string& key) const override;
    void setUserSetting(const std::string& key, const std::string& text) override;
    void announce(const std::string& text) override;
    bool leaveByTab() override;
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
    std::function<void(std::optional<gfx::ImageRef>)> _picked;
    std::shared_ptr<DownloadPhotoLibrary::Contents> _photos =
        std::make_shared<DownloadPhotoLibrary::Contents>();
};

}  // namespace kalim
