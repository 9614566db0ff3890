#include "kalimkit/host/sdl/SdlHands.h"

#include <cstdio>
#include <utility>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/TerminalText.h"
#include "kalimkit/host/sdl/PictureClipboard.h"

namespace kalim {

void SdlWindow::Hands::editorKeysCopyPicture(const gfx::ImageRef& image) {
    codec::Bytes png;
    const bool isEncoded = !codec::encodePng(*image->pixels(), png);
    if (isEncoded && PictureClipboard::put(png)) return;
    _window.environment().tell("剪贴板不可用", "请安装 xclip 以复制和粘贴图片");
}

void SdlWindow::Hands::editorKeysPastePicture() {
    // Another process that asked for a picture would wait for this one, which waits for it; and to
    // answer it after it has given up ends this one.
    const bool isOwnText = _window.environment().isOwnTextOnClipboard();
    const std::optional<codec::Bytes> png = isOwnText ? codec::Bytes() : PictureClipboard::get();
    if (!png) {
        _window.environment().tell("剪贴板不可用", "请安装 xclip 以复制和粘贴图片");
    } else if (png->empty()) {
        _window.environment().tell("剪贴板中没有图片");
    } else {
        open(codec::decode(*png, "the clipboard"), "");
    }
}

bool SdlWindow::Hands::openFile(const std::string& path) {
    return open(codec::decodeFile(path), path);
}

bool SdlWindow::Hands::open(codec::DecodeResult decoded, const std::string& path) {
    if (!decoded.error && _window._pictureRefusal) {
        decoded.error = _window._pictureRefusal(decoded.bitmap.size());
    }
    if (decoded.error) {
        const std::string reason = codec::terminalText(*decoded.error);
        std::fprintf(stderr, "%s\n", reason.c_str());
        _window.seat().remote()->refusePicture(reason);
        return false;
    }
    gfx::Device& device = _window.environment().device();
    const gfx::ImageRef image = device.makeImage(std::move(decoded.bitmap), 1, decoded.orientation);
    // The user may be asked first, and the window may be closed meanwhile.
    const auto tellHost = [weakHands = std::weak_ptr(_window._hands), path](bool isTaken) {
        const auto hands = weakHands.lock();
        if (isTaken && hands && hands->_window._pictureTaken) hands->_window._pictureTaken(path);
    };
    _window.seat().remote()->openPicture(image, tellHost);
    return image != nullptr;
}

}  // namespace kalim
