#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Image.h"
#include "cli/Play.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::cli {

namespace {

constexpr int failure = 2;
// Points, and pixels of either side of the screen: more than a surface can have.
constexpr double longestSide = 32767;
constexpr double smallestScale = 0.5;
constexpr double largestScale = 8;

// The whole text as a finite number.
std::optional<double> parseNumber(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

// "390x844"
std::optional<gfx::Size> parseSize(const std::string& text) {
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos) return std::nullopt;
    const auto width = parseNumber(std::string_view(text).substr(0, cross));
    const auto height = parseNumber(std::string_view(text).substr(cross + 1));
    if (!width || !height) return std::nullopt;
    return gfx::Size{*width, *height};
}

std::string readSize(const std::string& text, const char* example, gfx::Size& size) {
    const auto isSide = [](double side) { return side >= 1 && side <= longestSide; };
    const std::optional<gfx::Size> sides = parseSize(text);
    if (!sides || !isSide(sides->width) || !isSide(sides->height)) {
        return std::string("must be two sides from 1 to 32767 like ") + example + ", not " + text;
    }
    size = *sides;
    return {};
}

std::string readScale(const std::string& text, double& scale) {
    const std::optional<double> number = parseNumber(text);
    if (!number || *number < smallestScale || *number > largestScale) {
        return "must be a number from 0.5 to 8, not " + text;
    }
    scale = *number;
    return {};
}

std::string wrongRect(const std::string& text) {
    return "must be x,y,width,height in pixels like 10,20,300,200, not " + text;
}

// "10,20,300,200"
std::string readRect(const std::string& text, gfx::Rect& rect) {
    double numbers[4] = {};
    std::string_view rest = text;
    for (int i = 0; i < 4; ++i) {
        const std::size_t comma = i < 3 ? rest.find(',') : rest.size();
        const auto number = parseNumber(rest.substr(0, comma));
        if (comma == std::string_view::npos || !number) return wrongRect(text);
        numbers[i] = *number;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    rect = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return rect.isEmpty() ? wrongRect(text) : std::string();
}

// The command line, read into what is to be done.
class CommandLine {
public:
    CommandLine() {
        _app.set_version_flag("--version", "kalimkit " KALIM_VERSION);
        _app.require_subcommand(1);
        CLI::App& play = *_app.add_subcommand("play", "Play a scenario without a screen");
        play.add_option("SCENARIO", _play.scenario,
                        "A file of steps, one JSON object a line; - "
                        "reads standard input")
            ->required();
        play.add_option("--canvas", "The view's size in points (390x844)")
            ->type_name("WxH")
            ->check([this](const std::string& text) {
                return readSize(text, "390x844", _play.screen.canvas);
            });
        play.add_option("--scale", "Pixels per point (2)")
            ->type_name("K")
            ->check(
                [this](const std::string& text) { return readScale(text, _play.screen.scale); });
        play.add_option("--picture", _play.picture, "The photo to draw on: JPEG, PNG or WebP")
            ->type_name("FILE");
        addImage();
    }

    // The exit status where nothing is left to do: after an error, which is on standard error then,
    // or after what was asked for by --help and --version.
    std::optional<int> parse(int argc, char** argv) {
        try {
            _app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() != 0) return fail(describe(error));
            const int status = _app.exit(error);
            return std::cout.flush() ? status : fail("standard output cannot be written");
        }
        const double side = std::max(_play.screen.canvas.width, _play.screen.canvas.height);
        if (side * _play.screen.scale > longestSide) {
            return fail("--canvas: at this --scale a side is longer than 32767 pixels");
        }
        return std::nullopt;
    }

    // Does what the command line asks for; the exit status.
    int run() const { return _image ? image(*_image) : cli::play(_play); }

private:
    void addImage() {
        CLI::App& command = *_app.add_subcommand("image", "Work on a picture without drawing");
        command.require_subcommand(1);
        using enum ImageOptions::Operation;
        CLI::App& pixelate = addOperation(command, "pixelate", Pixelate, "Blocks of one colour");
        pixelate.add_option("--level", _asked.level, "The side of a block in pixels (20)")
            ->type_name("L")
            ->check(CLI::Range(1, 32768));
        CLI::App& fit = addOperation(command, "fit", Fit, "Shrink to a box, keeping the aspect");
        fit.add_option("--size", "The box in pixels")
            ->type_name("WxH")
            ->required()
            ->check([this](const std::string& text) {
                return readSize(text, "1280x720", _asked.size);
            });
        fit.add_flag("--enlarge", _asked.enlarge, "Enlarge a smaller picture, too");
        CLI::App& crop = addOperation(command, "crop", Crop, "Cut out a part");
        crop.add_option("--rect", "The part in pixels of the upright picture")
            ->type_name("X,Y,W,H")
            ->required()
            ->check([this](const std::string& text) { return readRect(text, _asked.rect); });
    }

    CLI::App& addOperation(CLI::App& command, const char* name, ImageOptions::Operation operation,
                           const char* description) {
        CLI::App& app = *command.add_subcommand(name, description);
        app.add_option("IN", _asked.input, "The picture to read")->required();
        app.add_option("OUT", _asked.output, "The picture to write")->required();
        app.callback([this, operation] {
            _asked.operation = operation;
            _image = _asked;
        });
        return app;
    }

    std::string describe(const CLI::ParseError& error) const {
        // Without a command the parser asks for one before it looks at what else it was given.
        if (!lacksCommand()) return error.what();
        const std::vector<std::string> unknown = _app.remaining(true);
        return unknown.empty() ? "which command?" : "unknown command or option: " + unknown.front();
    }

    // Whether the command, or what `image` is to do, is not named.
    bool lacksCommand() const {
        const std::vector<CLI::App*> commands = _app.get_subcommands();
        return commands.empty() || (commands.front()->get_require_subcommand_min() > 0 &&
                                    commands.front()->get_subcommands().empty());
    }

    static int fail(const std::string& sentence) {
        std::fprintf(stderr, "kalimkit: %s\nSee kalimkit --help.\n", sentence.c_str());
        return failure;
    }

    CLI::App _app{"Draws on pictures.", "kalimkit"};
    PlayOptions _play;
    ImageOptions _asked;
    // Only for `kalimkit image`.
    std::optional<ImageOptions> _image;
};

}  // namespace

}  // namespace kalim::cli

int main(int argc, char** argv) try {
    // A reader that goes away is an error of writing, not the end of the process.
    std::signal(SIGPIPE, SIG_IGN);
    kalim::cli::CommandLine commandLine;
    if (const std::optional<int> status = commandLine.parse(argc, argv)) return *status;
    const int status = commandLine.run();
    kalim::gfx::CairoDevice::releaseFontCaches();
    return status;
} catch (const std::bad_alloc&) {
    std::fputs("kalimkit: out of memory\n", stderr);
    return kalim::cli::failure;
} catch (const std::exception& error) {
    std::fprintf(stderr, "kalimkit: %s\n", error.what());
    return kalim::cli::failure;
}
