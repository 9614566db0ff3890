#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "kalimkit/backend/html/HtmlImports.h"
#include "kalimkit/backend/html/HtmlRaster.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"

// The scenario player as a module of a page: what tests/browser/player.js calls and supplies. One
// scenario at a time. Texts are UTF-8 with their length.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace kalim::page {

// The number of a picture that the page has decoded before; 0 where it has none of this name.
KALIM_PAGE("scenario_load") int load(const char* name, int length);
// The page copies the picture before it returns.
KALIM_PAGE("scenario_save") void save(const char* name, int length, int picture);
KALIM_PAGE("scenario_print") void print(const char* line, int length);

}  // namespace kalim::page

namespace {

namespace page = kalim::page;

int lengthOf(std::string_view text) {
    return static_cast<int>(text.size());
}

class PageFiles : public kalim::ScenarioFiles {
public:
    LoadedPicture loadPicture(const std::string& path) override {
        const auto raster = kalim::gfx::HtmlRaster::adopt(page::load(path.data(), lengthOf(path)));
        if (!raster) return {nullptr, path + ": the page has no such picture"};
        return {
            std::make_shared<const kalim::gfx::Image>(raster, 1, kalim::gfx::ImageOrientation::Up),
            {}};
    }

    std::optional<std::string> savePicture(const std::string& path,
                                           const kalim::gfx::ImageRef& image) override {
        const auto raster = kalim::gfx::HtmlRaster::of(*image);
        if (!raster) return path + ": the page has no room for the picture";
        page::save(path.data(), lengthOf(path), raster->picture());
        return std::nullopt;
    }
};

struct Play {
    Play(kalim::gfx::Size canvas, double scale)
        : player(device, files,
                 [](const std::string& line) { page::print(line.data(), lengthOf(line)); },
                 {canvas, scale}) {}

    kalim::gfx::HtmlDevice device;
    PageFiles files;
    kalim::ScenarioPlayer player;
};

std::unique_ptr<Play> current;
std::vector<char> given;
std::string problem;

std::string_view givenText(int length) {
    return {given.data(), static_cast<std::size_t>(length)};
}

// Zero, or the length of what problem() then points to.
int tell(std::optional<std::string> found) {
    problem = std::move(found).value_or("");
    return lengthOf(problem);
}

}  // namespace

// Where the page writes the text of the next call, as many bytes.
KALIM_EXPORT("buffer") void* buffer(int bytes) {
    given.resize(static_cast<std::size_t>(bytes) + 1);
    return given.data();
}

// Points, and pixels per point.
KALIM_EXPORT("start") void start(double width, double height, double scale) {
    current = nullptr;
    current = std::make_unique<Play>(kalim::gfx::Size{width, height}, scale);
}

KALIM_EXPORT("finish") void finish() {
    current = nullptr;
}

// Both answer with the length of a problem, 0 when all went well.
KALIM_EXPORT("set_picture") int setPicture(int length) {
    return tell(current->player.setPicture(std::string(givenText(length))));
}

KALIM_EXPORT("play") int play(int length) {
    return tell(current->player.play(givenText(length)));
}

KALIM_EXPORT("problem") const char* problemText() {
    return problem.data();
}
