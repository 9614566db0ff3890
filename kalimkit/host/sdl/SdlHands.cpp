#include "kalimkit/host/sdl/SdlHands.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/TerminalText.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/host/sdl/PictureClipboard.h"
#include "kalimkit/host/seat/ReopenQuestion.h"

namespace kalim {

bool SdlWindow::Hands::editorKeysOffers(EditorAction action) const {
    switch (action) {
        case EditorAction::Copy:
            return true;
        case EditorAction::Save:
            return _window._pictureSaver && _window._isSaverSettled;
        case EditorAction::SaveAs:
            return static_cast<bool>(_window._pictureSaver);
    }
    return false;
}

void SdlWindow::Hands::editorKeysCopyPicture(const gfx::ImageRef& image) {
    if (!_window.copyPicture(image)) return;
    _window.seat().remote()->showNote(_window.environment().localizedString("已拷贝"));
    if (_window._pictureCopied) _window._pictureCopied();
}

void SdlWindow::Hands::editorKeysSavePicture(const gfx::ImageRef& image) {
    if (_window._pictureSaver) _window._pictureSaver(image, "");
}

void SdlWindow::Hands::editorKeysSavePictureAs(const gfx::ImageRef& image) {
    if (!_window._pictureSaver) return;
    _window.environment().choosePlace(
        [weakHands = std::weak_ptr(_window._hands), image](const std::optional<std::string>& path) {
            const auto hands = weakHands.lock();
            if (hands && path) hands->_window._pictureSaver(image, *path);
        });
}

bool SdlWindow::Hands::editorKeysToggleFullScreen() {
    _window.setFullScreen(!_window.isFullScreen());
    return true;
}

bool SdlWindow::Hands::editorKeysEnter() {
    return _window._enterTaker && _window._enterTaker();
}

bool SdlWindow::Hands::editorKeysEscape() {
    return _window._escapeTaker && _window._escapeTaker();
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
        OpenedFile opened;
        opened.picture = _window.environment().decoder()(*png, "the clipboard", {});
        opened.error = opened.picture.error;
        opened.bytes = *png;
        open(std::move(opened), "");
    }
}

bool SdlWindow::Hands::editorKeysSaveDocument() {
    if (_window._documentSaver) _window._documentSaver();
    return static_cast<bool>(_window._documentSaver);
}

bool SdlWindow::Hands::editorKeysOpenFile() {
    _window.environment().chooseFile(
        [weakHands = std::weak_ptr(_window._hands)](const std::optional<std::string>& path) {
            const auto hands = weakHands.lock();
            if (hands && path) hands->openFile(*path);
        });
    return true;
}

void SdlWindow::Hands::openFile(const std::string& path) {
    FileOpening opening{.isFlat = true, .decode = _window.environment().decoder()};
    OpenedFile flat = kalim::openFile(path, opening);
    if (flat.error || flat.document || !hasDocumentInside(flat.bytes))
        return open(std::move(flat), path);
    const auto kept = std::make_shared<OpenedFile>(std::move(flat));
    askToReopen(
        [weakHands = std::weak_ptr(_window._hands), kept, path, opening](bool goesOn) mutable {
            const auto hands = weakHands.lock();
            opening.isFlat = false;
            if (hands) hands->open(goesOn ? openBytes(kept->bytes, path, opening) : *kept, path);
        });
}

bool SdlWindow::copyPicture(const gfx::ImageRef& image) {
    codec::Bytes png;
    const bool isEncoded = image && !codec::encodePng(*image->pixels(), png);
    if (isEncoded && PictureClipboard::put(png)) return true;
    _environment->tell("剪贴板不可用", "请安装 xclip 以复制和粘贴图片");
    return false;
}

void SdlWindow::Hands::open(OpenedFile opened, const std::string& path) {
    if (opened.document && !opened.document->picture) {
        opened.error = path + ": the document has no picture";
    } else if (!opened.error && _window._pictureRefusal) {
        opened.error = _window._pictureRefusal(opened.picture.bitmap.size());
    }
    if (opened.error) return refuse(*opened.error);
    const gfx::ImageRef image = _window.origins().make(_window.environment().device(), opened);
    const auto document =
        opened.document ? std::make_shared<const Document>(std::move(*opened.document)) : nullptr;
    // The user may be asked first, and the window may be closed meanwhile.
    const auto take = [weakHands = std::weak_ptr(_window._hands), path, document,
                       image](bool isTaken) {
        const auto hands = weakHands.lock();
        if (!isTaken || !hands) return;
        // The picture is there then, and what it came from must not be saved over.
        const auto problem = document
                                 ? hands->_window.seat().editor()->openDocument(*document, image)
                                 : std::nullopt;
        if (problem) hands->refuse(path + ": " + *problem);
        hands->took(path, document && !problem);
    };
    _window.seat().remote()->openPicture(image, take);
}

void SdlWindow::Hands::refuse(const std::string& reason) {
    const std::string shown = codec::terminalText(reason);
    std::fprintf(stderr, "%s\n", shown.c_str());
    _window.seat().remote()->refusePicture(shown);
}

void SdlWindow::Hands::took(const std::string& path, bool isDocument) const {
    const auto& told =
        isDocument && _window._documentTaken ? _window._documentTaken : _window._pictureTaken;
    if (told) told(path);
}

}  // namespace kalim
