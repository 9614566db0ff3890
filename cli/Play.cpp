#include "cli/Play.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "cli/PictureFiles.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::cli {

namespace {

constexpr int failure = 2;

int complain(const std::string& sentence) {
    std::fprintf(stderr, "kalimkit: %s\n", sentence.c_str());
    return failure;
}

// Lines on standard output. Each is flushed, so that what was printed stays printed when a later
// step fails; after an error nothing more is written.
class StandardOutput {
public:
    void printLine(const std::string& line) {
        if (_error) return;
        const bool isWritten = std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
                               std::fputc('\n', stdout) != EOF && std::fflush(stdout) == 0;
        if (!isWritten) _error = std::string("standard output: ") + std::strerror(errno);
    }
    const std::optional<std::string>& error() const { return _error; }

private:
    std::optional<std::string> _error;
};

// The lines of a file or of standard input as they arrive, so that a scenario can be typed or piped
// step by step.
class LineReader {
public:
    explicit LineReader(const std::string& path)
        : _name(path == "-" ? "standard input" : path),
          _file(path == "-" ? stdin : std::fopen(path.c_str(), "r")) {
        if (!_file) _error = _name + ": " + std::strerror(errno);
    }
    ~LineReader() {
        std::free(_line);
        if (_file && _file != stdin) std::fclose(_file);
    }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Whether there was another line.
    bool next() {
        if (!_file) return false;
        _length = ::getline(&_line, &_capacity, _file);
        if (_length >= 0) {
            ++_number;
            return true;
        }
        if (std::ferror(_file)) _error = _name + ": " + std::strerror(errno);
        return false;
    }
    std::string_view line() const { return {_line, static_cast<std::size_t>(_length)}; }
    // "scenario.jsonl:12"
    std::string place() const { return _name + ":" + std::to_string(_number); }
    // Why there are no more lines, where that is not the end of the file.
    const std::optional<std::string>& error() const { return _error; }

private:
    std::string _name;
    std::FILE* _file;
    char* _line = nullptr;
    std::size_t _capacity = 0;
    ssize_t _length = 0;
    int _number = 0;
    std::optional<std::string> _error;
};

}  // namespace

int play(const PlayOptions& options) {
    LineReader reader(options.scenario);
    if (reader.error()) return complain(*reader.error());
    const std::shared_ptr<gfx::CairoDevice> device = gfx::CairoDevice::make();
    PictureFiles files(*device);
    StandardOutput output;
    ScenarioScreen screen = options.screen;
    const bool hasPicture = !options.picture.empty();
    if (screen.editor && hasPicture) {
        ScenarioFiles::LoadedPicture loaded = files.loadPicture(options.picture);
        if (!loaded.image) return complain("--picture: " + loaded.error);
        screen.editor->picture = loaded.image;
    }
    ScenarioPlayer player(
        *device, files, [&](const std::string& line) { output.printLine(line); }, screen);
    if (!screen.editor && hasPicture) {
        if (const auto problem = player.setPicture(options.picture)) {
            return complain("--picture: " + *problem);
        }
    }
    while (reader.next()) {
        const auto problem = player.play(reader.line());
        if (output.error()) return complain(*output.error());
        if (problem) return complain(reader.place() + ": " + *problem);
    }
    return reader.error() ? complain(*reader.error()) : 0;
}

}  // namespace kalim::cli
