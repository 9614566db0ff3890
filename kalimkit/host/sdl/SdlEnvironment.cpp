#include "kalimkit/host/sdl/SdlEnvironment.h"

#include <SDL.h>

#include <chrono>
#include <memory>
#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/host/sdl/FolderPhotoLibrary.h"
#include "kalimkit/host/sdl/PictureChooser.h"
#include "kalimkit/host/sdl/UserDefaults.h"

namespace kalim {

SdlEnvironment::SdlEnvironment(double scale)
    : _device(gfx::CairoDevice::make()),
      _userDefaults(std::make_unique<UserDefaults>(UserDefaults::usualPath())),
      _chooser(std::make_unique<PictureChooser>(runLoop())) {
    setLanguage(messageLocale());
    setScreen({scale, {}, false});
}

SdlEnvironment::~SdlEnvironment() {
    writeSettings();
}

double SdlEnvironment::wallClock() const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

void SdlEnvironment::pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) {
    const auto chosen = [this, picked](const std::optional<std::string>& path) {
        if (!path) return picked(std::nullopt);
        codec::Bytes bytes;
        codec::DecodeResult photo;
        photo.error = codec::readPictureFile(*path, bytes);
        if (!photo.error) photo = _decoder(bytes, *path, {});
        // Null for one that cannot be read; whoever asked says so.
        gfx::ImageRef image;
        if (!photo.error) image = _device->makeImage(std::move(photo.bitmap), 1, photo.orientation);
        // What is hidden in it is hidden along with all that its file holds together.
        if (image) {
            image = std::make_shared<const gfx::Image>(image->raster(), image->scale(),
                                                       image->orientation(), photo.grid);
        }
        picked(image);
    };
    choose(localizedString("打开图片"), ChooserKind::Picture, chosen);
}

void SdlEnvironment::chooseFile(
    const std::function<void(std::optional<std::string> path)>& chosen) {
    choose(localizedString("打开图片或文档"), ChooserKind::PictureOrDocument, chosen);
}

void SdlEnvironment::choosePlace(
    const std::function<void(std::optional<std::string> path)>& chosen) {
    choose(localizedString("另存为"), ChooserKind::NewPicture, chosen);
}

void SdlEnvironment::choose(const std::string& title, ChooserKind kind,
                            const std::function<void(std::optional<std::string> path)>& chosen) {
    if (_chooser->choose(title, chosen, kind)) return;
    const bool isSaving = kind == ChooserKind::NewPicture;
    presentAlert(
        {localizedString("没有文件对话框"),
         localizedString(isSaving ? "请安装 zenity 以选择保存位置" : "请安装 zenity 以选择图片"),
         {localizedString("好")},
         {}});
    chosen(std::nullopt);
}

std::shared_ptr<ui::PhotoLibrary> SdlEnvironment::makePhotoLibrary() {
    return std::make_shared<FolderPhotoLibrary>(FolderPhotoLibrary::usualFolder());
}

std::string SdlEnvironment::clipboardText() {
    char* const text = SDL_GetClipboardText();
    const std::string copy = text ? text : "";
    SDL_free(text);
    return copy;
}

void SdlEnvironment::setClipboardText(const std::string& text) {
    SDL_SetClipboardText(text.c_str());
    _ownClipboardText = text;
}

bool SdlEnvironment::isOwnTextOnClipboard() {
    return !_ownClipboardText.empty() && clipboardText() == _ownClipboardText;
}

std::optional<bool> SdlEnvironment::userDefault(const std::string& key) const {
    return _userDefaults->value(key);
}

void SdlEnvironment::setUserDefault(const std::string& key, bool value) {
    // One that cannot be written still holds until the end of the process.
    _userDefaults->setValue(key, value);
}

std::optional<std::string> SdlEnvironment::userSetting(const std::string& key) const {
    const auto found = _newSettings.find(key);
    return found == _newSettings.end() ? _userDefaults->text(key) : std::optional(found->second);
}

void SdlEnvironment::setUserSetting(const std::string& key, const std::string& text) {
    constexpr double delay = 0.5;
    if (userSetting(key) == text) return;
    // The run loop goes with this object.
    if (_newSettings.empty()) runLoop().after(delay, [this] { writeSettings(); });
    _newSettings[key] = text;
}

void SdlEnvironment::writeSettings() {
    if (_newSettings.empty()) return;
    _userDefaults->setTexts(_newSettings);
    _newSettings.clear();
}

}  // namespace kalim
