#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Complaint.h"
#include "cli/ConfigFile.h"
#include "cli/Edit.h"
#include "cli/EditOptionValues.h"
#include "cli/EditSettings.h"
#include "cli/Image.h"
#include "cli/Info.h"
#include "cli/OptionValues.h"
#include "cli/OutputPattern.h"
#include "cli/Play.h"
#include "cli/Redact.h"
#include "cli/Render.h"
#include "cli/Works.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Sandbox.h"
#include "kalimkit/host/seat/SeatEnvironment.h"

namespace kalim::cli {

namespace {

// The command line, read into what is to be done.
class CommandLine {
public:
    // Where `edit` takes what it is not told from.
    explicit CommandLine(const ConfigFile& file) {
        file.applyTo(_askedEdit);
        _app.require_subcommand(1);
        _app.footer("kalimkit FILE does as kalimkit edit FILE.");
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
        play.add_option("--picture", _play.picture,
                        "The photo to draw on, or a document; - reads standard input")
            ->type_name("FILE");
        play.add_flag("--flat", _play.isFlat,
                      "Take a picture with a document inside for the picture alone");
        play.add_option("--lang", "What texts are in, auto as the locale says (the given Chinese)")
            ->type_name("LANG")
            ->check([this](const std::string& text) {
                std::string& language = _play.screen.language;
                const std::string problem = readLanguage(text, language);
                // A locale that names no language is one as well.
                if (language.empty()) language = SeatEnvironment::messageLocale();
                if (language.empty()) language = "C";
                return problem;
            });
        play.add_flag("--forgiving", _play.screen.forgiving,
                      "Mend what costs people work, as the window and the page do");
        addFonts(play, _play.fonts);
        addWriting(play, _play.writing);
        addEditorOptions(play);
        addImage();
        addEdit();
        addConfig();
        addInfo();
        addRedact();
        addRender();
        addWorks();
        addVersion(_app);
    }

    // The exit status where nothing is left to do: after an error, which is on standard error then,
    // or after what was asked for by --help and --version.
    std::optional<int> parse(const Arguments& arguments) {
        try {
            // The parser takes them from the back.
            _app.parse(
                std::vector<std::string>(arguments.words().rbegin(), arguments.words().rend()));
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() != 0) return fail(describe(error) + arguments.hint());
            const int status = _app.exit(error);
            return std::cout.flush() ? status : fail("standard output cannot be written");
        }
        const double side = std::max(_play.screen.canvas.width, _play.screen.canvas.height);
        if (side * _play.screen.scale > longestSide) {
            return fail("--canvas: at this --scale a side is longer than 32767 pixels");
        }
        if (_isEditor) _play.screen.editor = _editor;
        return std::nullopt;
    }

    // Does what the command line asks for; the exit status.
    int run() const { return _command ? _command() : cli::play(_play); }

private:
    void addEditorOptions(CLI::App& play) {
        CLI::Option& editor = *play.add_flag("--editor", _isEditor,
                                             "Play on the whole editor instead of the bare canvas");
        play.add_option("--native-height", "A phone whose screen is that many pixels high")
            ->type_name("PIXELS")
            ->needs(&editor)
            ->check([this](const std::string& text) {
                return readNativeHeight(text, _editor.nativeHeight);
            });
        play.add_option("--needs-init-animate", "Zoom in from a thumbnail at first")
            ->type_name("X,Y,W,H,SCALE")
            ->needs(&editor)
            ->check(
                [this](const std::string& text) { return readEntrance(text, _editor.entrance); });
        play.add_option("--layout", "The bars of a phone, of wide screens, or as it fits (phone)")
            ->type_name("auto|phone|desk")
            ->needs(&editor)
            ->check([this](const std::string& text) { return readLayout(text, _editor.layout); });
        play.add_option("--user-default", "A setting that is there from the start")
            ->type_name("KEY=VALUE")
            ->needs(&editor)
            ->check([this](const std::string& text) {
                return readUserDefault(text, _editor.userDefaults);
            });
    }

    void addImage() {
        CLI::App& command = *_app.add_subcommand("image", "Work on a picture without drawing");
        command.require_subcommand(1);
        using enum ImageOptions::Operation;
        CLI::App& pixelate =
            addOperation(command, "pixelate", Pixelate,
                         "Blocks of one colour, which can be guessed from: kalimkit redact hides");
        pixelate.add_option("--level", _asked.level, "The side of a block in pixels (20)")
            ->type_name("L")
            ->check(CLI::Range(1, 32768));
        pixelate.add_option("--rect", "Only this part, in pixels of the upright picture")
            ->type_name("X,Y,W,H")
            ->check([this](const std::string& text) { return readRect(text, _asked.rect); });
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
        CLI::App& turn = addOperation(command, "turn", Turn, "Turn by right angles");
        turn.add_option("--quarters", _asked.quarters,
                        "How many of them clockwise (1); below 0 the other way round")
            ->type_name("N");
    }

    CLI::App& addOperation(CLI::App& command, const char* name, ImageOptions::Operation operation,
                           const char* description) {
        CLI::App& app = *command.add_subcommand(name, description);
        app.add_option("IN", _asked.input, "The picture to read; - reads standard input")
            ->required();
        app.add_option("OUT", _asked.output,
                       "The picture to write; - is standard output, in the format of IN")
            ->required();
        addWriting(app, _asked.writing);
        app.callback([this, operation] {
            _asked.operation = operation;
            _command = [this] { return image(_asked); };
        });
        return app;
    }

    void addEdit() {
        CLI::App& command = *_app.add_subcommand("edit", "Draw on a photo in a window");
        EditOptions& asked = _askedEdit;
        command.add_option("PHOTO", asked.photo, "The picture or document; - reads standard input")
            ->required();
        for (const EditSetting& setting : editSettings())
            addSetting(command, setting);
        addDocument(command);
        command
            .add_option("--play", asked.scenario, "Play a scenario's touches in the window first")
            ->type_name("SCENARIO");
        addFonts(command, asked.fonts);
        addRecovery(command);
        command.footer(
            "? or F1 in the window lists its keys; docs/window.md tells of them as well.\n"
            "Options may stand in " +
            (ConfigFile::usualPath().empty() ? "a configuration file" : ConfigFile::usualPath()) +
            ", see kalimkit config --show.");
        command.callback([this] { _command = [this] { return edit(_askedEdit); }; });
    }

    // The command line comes after the configuration file, which is there by now.
    void addSetting(CLI::App& command, const EditSetting& setting) {
        std::string name = std::string("--") + setting.key;
        if (setting.alias) name += std::string(",--") + setting.alias;
        const std::string names =
            setting.letter ? std::string("-") + setting.letter + "," + name : name;
        const auto read = setting.read;
        if (setting.type) {
            command.add_option(names, setting.description)
                ->type_name(setting.type)
                ->check([this, read](const std::string& text) { return read(text, _askedEdit); });
        } else {
            command.add_flag_function(
                names,
                [this, read](std::int64_t count) {
                    read(count > 0 ? "true" : "false", _askedEdit);
                },
                setting.description);
        }
    }

    void addConfig() {
        CLI::App& command =
            *_app.add_subcommand("config", "Check or show the configuration file of edit");
        CLI::Option& check = *command.add_flag(
            "--check", _config.isChecked, "Say what is wrong with it; this is what happens anyway");
        command.add_flag("--show", _config.isShown, "Print all keys and what it says of them")
            ->excludes(&check);
        command.add_option("FILE", _config.file, "Another file than the user's own");
        command.callback([this] { _command = [this] { return config(_config); }; });
    }

    void addRecovery(CLI::App& command) {
        const auto choose = [this](EditOptions::Recovery recovery) {
            return [this, recovery](std::int64_t) { _askedEdit.recovery = recovery; };
        };
        CLI::Option& goOn =
            *command.add_flag_function("--recover", choose(EditOptions::Recovery::GoOn),
                                       "Go on with unfinished work without asking");
        command
            .add_flag_function("--no-recovery", choose(EditOptions::Recovery::Off),
                               "Start anew, and record nothing that could be gone on with")
            ->excludes(&goOn);
    }

    void addDocument(CLI::App& command) {
        EditOptions& asked = _askedEdit;
        command
            .add_option("--document", asked.document,
                        "Save a document there as well, which can be opened again")
            ->type_name("FILE");
        CLI::Option& sealed = *command.add_flag(
            "--sealed", asked.isSealed,
            "Keep out of the document what is hidden or cut off, so that it can be given away");
        command
            .add_flag("--link", asked.isLinked,
                      "Leave the photo beside the document instead of putting it inside")
            ->excludes(&sealed);
        command.add_flag("--document-inside", asked.isDocumentInside,
                         "Put a sealed document into the picture, a PNG");
        const auto choose = [&asked](EditOptions::Inside inside) {
            return [&asked, inside](std::int64_t) { asked.inside = inside; };
        };
        CLI::Option& reopen =
            *command.add_flag_function("--reopen", choose(EditOptions::Inside::Reopen),
                                       "Go on with the document inside a picture without asking");
        command
            .add_flag_function("--flat", choose(EditOptions::Inside::Flat),
                               "Take a picture with a document inside for the picture alone")
            ->excludes(&reopen);
    }

    void addInfo() {
        CLI::App& command =
            *_app.add_subcommand("info", "Say what a picture's or a document's file holds");
        command.add_option("FILE", _info.file, "The file; - reads standard input")->required();
        command.add_flag("--flat", _info.isFlat,
                         "Take a picture with a document inside for the picture alone");
        command.callback([this] { _command = [this] { return info(_info); }; });
    }

    void addRedact() {
        CLI::App& command = *_app.add_subcommand("redact", "Hide parts of a picture for certain");
        RedactOptions& asked = _redact;
        command.add_option("IN", asked.input, "The picture; - reads standard input")->required();
        command.add_option("-o,--output", asked.output, "The file to write; - is standard output")
            ->type_name("OUT")
            ->required();
        addEditOption(command, "-f,--format", "FORMAT", "png, jpeg or webp, whatever OUT is called",
                      readFormat, asked.format);
        command
            .add_option("--rect", _redactRects,
                        "A part to hide, pixels of the upright picture; may be given repeatedly")
            ->type_name("X,Y,W,H")
            ->required()
            ->allow_extra_args(false)
            ->check([](const std::string& text) {
                gfx::Rect rect;
                return readRect(text, rect);
            });
        addEditOption(command, "--style", "STYLE",
                      "sealed or solid, which hide for certain; mosaic, which can be guessed, or "
                      "blur, which is cosmetic (sealed)",
                      readRedactStyle, asked.style);
        addEditOption(command, "--color", "#RRGGBB", "What solid shows (#000000)", readColor,
                      asked.color);
        addWriting(command, asked.writing);
        command.callback([this, &command] {
            if (command.count("--color") > 0 && _redact.style != RedactOptions::Style::Solid)
                throw CLI::ValidationError("--color", "needs --style solid");
            for (const std::string& text : _redactRects)
                readRect(text, _redact.rects.emplace_back());
            _redact.output = expandedPath(_redact.output);
            _command = [this] { return redact(_redact); };
        });
    }

    void addRender() {
        CLI::App& command = *_app.add_subcommand("render", "Make pictures of documents");
        RenderOptions& asked = _render;
        command.add_option("FILE", asked.files, "Documents; - reads one from standard input")
            ->required();
        CLI::Option& output =
            *command
                 .add_option("-o,--output", asked.output,
                             "The picture of one document; - is standard output; without it a name "
                             "after the document's, beside it")
                 ->type_name("OUT");
        command.add_option("--out-dir", asked.folder, "The folder for pictures named so")
            ->type_name("DIR")
            ->excludes(&output);
        addEditOption(command, "-f,--format", "FORMAT", "png, jpeg or webp (png)", readFormat,
                      asked.format);
        command.add_flag("--screen-size", asked.isScreenSize,
                         "A pixel for each point, not for each pixel of the photo");
        command.add_option("--max-side", asked.maxSide, "The most pixels of the longer side")
            ->type_name("N")
            ->check(CLI::Range(1, static_cast<int>(longestSide)));
        command.add_option("-j,--jobs", asked.workers, "So many at a time (as there are cores)")
            ->type_name("N")
            ->check(CLI::Range(1, 1024));
        command.add_flag("--json", asked.isJson, "Print a line of JSON for each that is done");
        command.add_flag("--flat", asked.isFlat,
                         "Take a picture with a document inside for the picture alone");
        command.add_flag("--update", asked.isUpdate,
                         "Pass over those whose picture is there and not older");
        addFonts(command, asked.fonts);
        addWriting(command, asked.writing);
        command.callback([this] {
            _render.output = expandedPath(_render.output);
            _command = [this] { return render(_render); };
        });
    }

    void addWorks() {
        CLI::App& command =
            *_app.add_subcommand("works", "List the works that were neither sent nor discarded");
        CLI::Option& json = *command.add_flag("--json", _works.isJson, "Print one JSON array");
        command.add_option("--forget", _works.forgotten, "Remove one of them, or all")
            ->type_name("ID|all")
            ->excludes(&json)
            ->check([](const std::string& id) {
                return std::string(id.empty() ? "must be the id of a work, or all" : "");
            });
        command.callback([this] { _command = [this] { return works(_works); }; });
    }

    // What all commands that draw texts take.
    static void addFonts(CLI::App& command, std::vector<std::string>& fonts) {
        command
            .add_option("--font", fonts,
                        "A font to set texts in, before those of the system; may be given "
                        "repeatedly")
            ->type_name("FILE")
            ->allow_extra_args(false);
    }

    // What all commands that write pictures take.
    static void addWriting(CLI::App& command, PictureWriting& writing) {
        addEditOption(command, "--quality", "N",
                      "1 to 100, of a JPEG or WebP picture (that of the photo, else 90)",
                      readQuality, writing.quality);
        addEditOption(command, "--metadata", "safe|keep|none",
                      "What the written picture says beside its pixels (safe)", readMetadata,
                      writing.metadata);
        command.add_flag("--verbose", writing.isVerbose,
                         "Say on standard error what had to be encoded anew");
    }

    // To each command as well: what is asked for behind its name is looked up there only.
    static void addVersion(CLI::App& command) {
        command.set_version_flag("--version", "kalimkit " KALIM_VERSION);
        for (CLI::App* const inner : command.get_subcommands({}))
            addVersion(*inner);
    }

    template <typename Value>
    static void addEditOption(CLI::App& command, const char* names, const char* type,
                              const std::string& description,
                              std::string (*read)(const std::string&, Value&), Value& value) {
        command.add_option(names, description)
            ->type_name(type)
            ->check([read, &value](const std::string& text) { return read(text, value); });
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
        complain(sentence);
        std::fputs("See kalimkit --help.\n", stderr);
        return failure;
    }

    CLI::App _app{"Draws on pictures.", "kalimkit"};
    PlayOptions _play;
    bool _isEditor = false;
    // This is read only with --editor.
    EditorSetup _editor;
    ImageOptions _asked;
    EditOptions _askedEdit;
    InfoOptions _info;
    RedactOptions _redact;
    std::vector<std::string> _redactRects;
    RenderOptions _render;
    WorksOptions _works;
    ConfigOptions _config;
    // What is to be done if not to play.
    std::function<int()> _command;
};

}  // namespace

}  // namespace kalim::cli

int main(int argc, char** argv) try {
    // A reader that goes away is an error of writing, not the end of the process.
    std::signal(SIGPIPE, SIG_IGN);
    // Before there is anything that a process for decoding must not know.
    kalim::codec::Sandbox::start();
    const kalim::cli::Arguments arguments(argc, argv);
    const kalim::cli::ConfigFile file(arguments.isEdit() ? kalim::cli::ConfigFile::usualPath()
                                                         : "");
    kalim::cli::CommandLine commandLine(file);
    if (const std::optional<int> status = commandLine.parse(arguments)) return *status;
    for (const std::string& problem : file.problems())
        kalim::cli::complain(problem);
    if (!file.problems().empty()) return kalim::cli::failure;
    const int status = commandLine.run();
    kalim::gfx::CairoDevice::releaseFontCaches();
    return status;
} catch (const std::bad_alloc&) {
    return kalim::cli::complain("out of memory");
} catch (const std::exception& error) {
    return kalim::cli::complain(error.what());
}
