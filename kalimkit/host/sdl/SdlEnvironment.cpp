#include "kalimkit/host/sdl/SdlEnvironment.h"

#include <SDL.h>

#include <chrono>
#include <cstdlib>
#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/host/sdl/FolderPhotoLibrary.h"
#include "kalimkit/host/sdl/PictureChooser.h"
#include "kalimkit/host/sdl/UserDefaults.h"
#include "kalimkit/theme/EnglishTexts.h"
#include "kalimkit/ui/control/AlertView.h"

namespace kalim {

namespace {

constexpr gfx::Size leastBudget{2560, 1440};

// The locale of messages, by the variables that name it.
std::string messageLocale() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value && *value) return value;
    }
    return {};
}

}  // namespace

SdlEnvironment::SdlEnvironment(double scale)
    : _device(gfx::CairoDevice::make()),
      _screen{scale, {}, false},
      _isEnglish(prefersEnglishTexts(messageLocale())),
      _userDefaults(std::make_unique<UserDefaults>(UserDefaults::usualPath())),
      _chooser(std::make_unique<PictureChooser>(_loop)) {}

SdlEnvironment::~SdlEnvironment() = default;

double SdlEnvironment::wallClock() const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

std::optional<gfx::Size> SdlEnvironment::areaBudget() const {
    const gfx::Size doubled{2.0 * _screen.nativeSize.width, 2.0 * _screen.nativeSize.height};
    const bool isEnough = doubled.width * doubled.height >= leastBudget.width * leastBudget.height;
    return isEnough ? doubled : leastBudget;
}

std::string SdlEnvironment::localizedString(const std::string& key) const {
    return _isEnglish ? englishText(key) : key;
}

void SdlEnvironment::presentAlert(const ui::Alert& alert) {
    if (ui::Window* const window = keyWindow()) {
        ui::AlertView::show(*window, alert);
    } else {
        Environment::presentAlert(alert);
    }
}

void SdlEnvironment::pickImage(const std::function<void(std::optional<gfx::ImageRef>)>& picked) {
    const auto chosen = [this, picked](const std::optional<std::string>& path) {
        if (!path) return picked(std::nullopt);
        codec::DecodeResult photo = codec::decodeFile(*path);
        // Null for one that cannot be read; whoever asked says so.
        gfx::ImageRef image;
        if (!photo.error) image = _device->makeImage(std::move(photo.bitmap), 1, photo.orientation);
        picked(image);
    };
    if (_chooser->choose(_isEnglish ? "Open a Picture" : "打开图片", chosen)) return;
    presentAlert({_isEnglish ? "There Is No File Dialog" : "没有文件对话框",
                  _isEnglish ? "Install zenity to choose pictures" : "请安装 zenity 以选择图片",
                  {localizedString("好")},
                  {}});
    picked(std::nullopt);
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

}  // namespace kalim
