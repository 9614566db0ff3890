#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/host/seat/CatalogueEnvironment.h"

namespace kalim {

class PictureChooser;
enum class ChooserKind;
class UserDefaults;

// The desktop. Texts have the locale's language, English where it names none. User defaults are
// kept in a file of the user's configuration, and pictures in his folder for them.
class KALIM_API SdlEnvironment : public CatalogueEnvironment {
public:
    // Pixels per point. Draws with Cairo.
    explicit SdlEnvironment(double scale);
    ~SdlEnvironment() override;

    gfx::Device& device() override { return *_device; }
    double wallClock() const override;
    bool isPhotoLibraryAvailable() const override { return true; }
    // Without a dialog to ask with, an alert says so, and it counts as cancelled.
    void pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) override;
    // Asks for a picture or a document in the same way: its path, or nothing.
    void chooseFile(const std::function<void(std::optional<std::string> path)>& chosen);
    // Asks where to write a picture, and before a file is replaced.
    void choosePlace(const std::function<void(std::optional<std::string> path)>& chosen);
    std::shared_ptr<ui::PhotoLibrary> makePhotoLibrary() override;
    std::string clipboardText() override;
    void setClipboardText(const std::string& text) override;
    // Whether the clipboard holds what this process has put there last.
    bool isOwnTextOnClipboard();
    // How pictures are read that come by the dialogs, by the clipboard or are dropped: decode() of
    // the codec unless told.
    void setDecoder(codec::Decoder decoder) { _decoder = decoder; }
    codec::Decoder decoder() const { return _decoder; }
    std::optional<bool> userDefault(const std::string& key) const override;
    void setUserDefault(const std::string& key, bool value) override;
    // Those that change in quick succession, as while something is dragged, are written together,
    // at the latest at the end.
    std::optional<std::string> userSetting(const std::string& key) const override;
    void setUserSetting(const std::string& key, const std::string& text) override;

private:
    void choose(const std::string& title, ChooserKind kind,
                const std::function<void(std::optional<std::string> path)>& chosen);

    std::shared_ptr<gfx::Device> _device;
    void writeSettings();

    std::unique_ptr<UserDefaults> _userDefaults;
    // What is not in the file yet.
    std::map<std::string, std::string> _newSettings;
    std::unique_ptr<PictureChooser> _chooser;
    std::string _ownClipboardText;
    codec::Decoder _decoder = codec::decode;
};

}  // namespace kalim
