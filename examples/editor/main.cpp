// Opens a photo in the editor, in a window that SDL makes, and writes what the user sends.
#include <SDL.h>
#include <kalimkit/Editor.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <utility>

using kalim::Editor;

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("usage: editor-host PHOTO OUT.png\n", stderr), 2;
    std::string error;
    const auto photo = Editor::Picture::read(argv[1], &error);
    if (!photo) return std::fprintf(stderr, "%s\n", error.c_str()), 2;
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return std::fprintf(stderr, "%s\n", SDL_GetError()), 2;
    SDL_Window* const window =
        SDL_CreateWindow("A photo", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, 480, 720, 0);

    Editor editor(photo, 480, 720);
    bool isOver = false;
    editor.onFinish([&](const Editor::Picture& marked) {
        const auto file = marked.png();
        std::ofstream(argv[2]).write(reinterpret_cast<const char*>(file.data()), file.size());
        isOver = true;
    });
    editor.onClose([&] { isOver = true; });

    const auto now = [] { return SDL_GetTicks64() / 1000.0; };
    while (!isOver) {
        const Editor::Frame frame = editor.draw();
        if (!frame.changed.empty()) {
            SDL_Surface* const drawn = SDL_CreateRGBSurfaceWithFormatFrom(
                const_cast<std::uint8_t*>(frame.pixels), frame.width, frame.height, 32,
                static_cast<int>(frame.stride), SDL_PIXELFORMAT_RGB888);
            SDL_BlitSurface(drawn, nullptr, SDL_GetWindowSurface(window), nullptr);
            SDL_FreeSurface(drawn);
            SDL_UpdateWindowSurface(window);
        }
        SDL_Event event{};
        const double wait = std::clamp(editor.nextTick().value_or(INFINITY) - now(), 0.0, 60.0);
        SDL_WaitEventTimeout(&event, static_cast<int>(std::ceil(wait * 1000)));
        editor.tick(now());
        const auto [x, y] = std::pair(event.button.x, event.button.y);
        if (event.type == SDL_MOUSEBUTTONDOWN) editor.pointerPressed(x, y);
        if (event.type == SDL_MOUSEMOTION) editor.pointerMoved(event.motion.x, event.motion.y);
        if (event.type == SDL_MOUSEBUTTONUP) editor.pointerReleased(x, y);
        if (event.type == SDL_WINDOWEVENT) SDL_UpdateWindowSurface(window);
        if (event.type == SDL_QUIT) editor.close();
    }
    SDL_Quit();
    return 0;
}
