#pragma once

#include <SDL.h>

#include <memory>
#include <optional>
#include <string>

#include "cli/Edit.h"
#include "kalimkit/codec/DecodeResult.h"
#include "kalimkit/host/sdl/SdlWindow.h"

namespace kalim::cli {

// SDL's video from its start to the end of SDL.
class Video {
public:
    Video();
    ~Video() { SDL_Quit(); }
    Video(const Video&) = delete;
    Video& operator=(const Video&) = delete;
    const std::optional<std::string>& problem() const { return _problem; }

private:
    std::optional<std::string> _problem;
};

struct SdlWindowDeleter {
    void operator()(::SDL_Window* window) const { SDL_DestroyWindow(window); }
};
using SdlWindowHandle = std::unique_ptr<::SDL_Window, SdlWindowDeleter>;

// The window's title for a photo's path.
std::string titleOf(const std::string& photo);

// Hidden, for the photo's size is not known yet. The connection to the input method and much else
// that takes time comes with the window. Null, and SDL's error, where there can be none.
SdlWindowHandle openWindow(const EditOptions& options);

// Shows it as large as the user has made the last one; without that as large as the picture is, or
// as fits on the desktop, and with room for the bars of wide screens, where they are not ruled out.
void showWindow(SdlWindow& window, ::SDL_Window* sdl, const codec::DecodeResult& photo,
                const EditOptions& options);
// Has the next one be as large as this one is now, where that is not as showWindow has made it.
void rememberSize(SdlWindow& window, ::SDL_Window* sdl, const EditOptions& options);

}  // namespace kalim::cli
