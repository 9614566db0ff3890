// Has stars drawn on a photo, on a canvas without the editor around it, in an SDL window. Closing
// the window writes the result.
#include <SDL.h>

#include <cstdio>

#include "examples/kind/StarPen.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/host/sdl/SdlWindow.h"

using namespace kalim;

// The canvas is all that it shows; a host with views of its own puts it among them.
struct Screen : ui::ViewController {
    void loadView() override { setView(canvas); }
    const std::shared_ptr<MDrawView> canvas = MDrawView::initWithFrame({});
};

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("usage: canvas-host PHOTO OUT.png\n", stderr), 2;
    auto photo = codec::decodeFile(argv[1]);
    auto problem = photo.error ? photo.error : SdlWindow::startVideo();
    if (problem) return std::fprintf(stderr, "%s\n", problem->c_str()), 2;

    SDL_Window* const own = SDL_CreateWindow(
        "Stars", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, 720, 480, SDL_WINDOW_RESIZABLE);
    if (!own) return std::fprintf(stderr, "%s\n", SDL_GetError()), 2;
    {
        SdlWindow window(own, 1.0);
        problem = addStarPen();
        const auto screen = std::make_shared<Screen>();
        MDrawView& canvas = *screen->canvas;
        canvas.setForgiving(true);
        canvas.setFineHandles(true);
        canvas.setLargestMagnification(8);
        window.presentCanvas(screen, screen->canvas);
        canvas.setSnipImage(
            window.environment().device().makeImage(std::move(photo.bitmap), 1, photo.orientation));
        canvas.beginDrawingWithClass(Star::Class());
        canvas.setDrawLineWidth(6);
        window.run();

        const auto image = canvas.exportImageAtPictureScale();
        codec::Bytes file;
        if (!image) problem = "there is no memory for the result";
        if (!problem) problem = codec::encodePng(*image->pixels(), file);
        if (!problem) problem = codec::writeFileAtomically(argv[2], file);
    }
    SDL_DestroyWindow(own);
    SDL_Quit();
    if (problem) std::fprintf(stderr, "%s\n", problem->c_str());
    return problem ? 2 : 0;
}
