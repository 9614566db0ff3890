// Shows a photo in the editor, in an SDL window of this program's own, and writes what the user
// sends.
#include <SDL.h>

#include <cstdio>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/host/sdl/SdlWindow.h"

using namespace kalim;

struct Host : TesselViewControllerDelegate {
    Host(SdlWindow& window, const char* path) : window(window), path(path) {}
    void didDrawViewControllerFinishHandleImage(TesselViewController&,
                                                const gfx::ImageRef& image) override {
        codec::Bytes file;
        problem = codec::encodePng(*image->pixels(), file);
        if (!problem) problem = codec::writeFileAtomically(path, file);
        window.stop();
    }
    void close() override { window.stop(); }

    SdlWindow& window;
    const char* path;
    std::optional<std::string> problem;
};

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("usage: sdl-host PHOTO OUT.png\n", stderr), 2;
    auto photo = codec::decodeFile(argv[1]);
    auto problem = photo.error ? photo.error : SdlWindow::startVideo();
    if (problem) return std::fprintf(stderr, "%s\n", problem->c_str()), 2;

    SDL_Window* const own =
        SDL_CreateWindow("A program of its own", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                         480, 720, SDL_WINDOW_RESIZABLE);
    if (!own) return std::fprintf(stderr, "%s\n", SDL_GetError()), 2;
    {
        SdlWindow window(own, 1.0);
        const auto host = std::make_shared<Host>(window, argv[2]);
        const auto editor = TesselViewController::initWithSourceImageWithDelegate(
            window.environment().device().makeImage(std::move(photo.bitmap), 1, photo.orientation),
            host);
        // What is sent has every pixel of the photo, not only those that the window shows.
        editor->setExportsAtPictureScale(true);
        window.present(editor);
        window.run();
        problem = host->problem;
    }
    SDL_DestroyWindow(own);
    SDL_Quit();
    if (problem) std::fprintf(stderr, "%s\n", problem->c_str());
    return problem ? 2 : 0;
}
