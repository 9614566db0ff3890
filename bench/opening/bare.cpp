// The yardstick for the opening of the editor: decodes a photo and shows it in a window, and ends.
#include <SDL.h>

#include <cstdio>

#include "kalimkit/codec/Decode.h"

int main(int argc, char** argv) {
    if (argc != 2) return std::fputs("usage: kalim-bare-opening PHOTO\n", stderr), 2;
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return std::fprintf(stderr, "%s\n", SDL_GetError()), 2;
    const auto photo = kalim::codec::decodeFile(argv[1]);
    if (photo.error) return std::fprintf(stderr, "%s\n", photo.error->c_str()), 2;
    const auto& bitmap = photo.bitmap;
    SDL_Window* const window = SDL_CreateWindow("", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                                640, 660, SDL_WINDOW_RESIZABLE);
    SDL_Surface* const picture = SDL_CreateRGBSurfaceWithFormatFrom(
        const_cast<std::uint8_t*>(bitmap.row(0)), bitmap.size().width, bitmap.size().height, 32,
        static_cast<int>(bitmap.stride()), SDL_PIXELFORMAT_RGB888);
    SDL_Rect place{0, 90, 640, 480};
    SDL_BlitScaled(picture, nullptr, SDL_GetWindowSurface(window), &place);
    SDL_UpdateWindowSurface(window);
    SDL_FreeSurface(picture);
    SDL_DestroyWindow(window);
    SDL_Quit();
}
