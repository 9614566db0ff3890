#include "kalimkit/host/sdl/PictureChooser.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

extern char** environ;

namespace kalim {

namespace {

// Seconds between two looks at what the dialog says.
constexpr double lookEvery = 0.05;

// The program's command line.
std::vector<std::string> wordsFor(const std::string& title, ChooserKind kind) {
    std::vector<std::string> words{"zenity", "--file-selection", "--title=" + title};
    if (kind == ChooserKind::NewPicture) {
        words.insert(words.end(), {"--save", "--confirm-overwrite",
                                   "--file-filter=JPEG, PNG, WebP | *.jpg *.jpeg *.png *.webp"});
        return words;
    }
    const bool takesDocuments = kind == ChooserKind::PictureOrDocument;
    words.push_back(std::string("--file-filter=") + (takesDocuments ? "KalimKit, " : "") +
                    "JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF, HEIC | *.jpg *.jpeg *.png *.webp "
                    "*.gif *.bmp *.ppm *.pgm *.pbm *.tif *.tiff *.avif *.heic *.heif *.JPG *.JPEG "
                    "*.PNG *.WEBP *.GIF *.BMP *.TIF *.TIFF *.HEIC" +
                    (takesDocuments ? " *.kalim" : ""));
    words.emplace_back("--file-filter=* | *");
    return words;
}

}  // namespace

PictureChooser::~PictureChooser() {
    if (_process == 0) return;
    ::kill(_process, SIGTERM);
    ::close(_output);
    ::waitpid(_process, nullptr, 0);
}

bool PictureChooser::choose(const std::string& title, const Chosen& chosen, ChooserKind kind) {
    if (_process != 0) {
        chosen(std::nullopt);
        return true;
    }
    if (!start(title, kind)) return false;
    _chosen = chosen;
    look();
    return true;
}

bool PictureChooser::start(const std::string& title, ChooserKind kind) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return false;
    std::vector<std::string> words = wordsFor(title, kind);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    // Its warnings are nobody's business.
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error =
        ::posix_spawnp(&_process, "zenity", &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (error != 0) {
        _process = 0;
        ::close(ends[0]);
        return false;
    }
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    _output = ends[0];
    _text.clear();
    return true;
}

// The dialog is over when its output is.
void PictureChooser::look() {
    char part[4096];
    ssize_t count = 0;
    while ((count = ::read(_output, part, sizeof part)) > 0)
        _text.append(part, static_cast<std::size_t>(count));
    if (count == 0 || (errno != EAGAIN && errno != EINTR)) return finish();
    _runLoop.after(lookEvery, [this, isAlive = std::weak_ptr<bool>(_isAlive)] {
        if (!isAlive.expired()) look();
    });
}

void PictureChooser::finish() {
    int status = 0;
    ::close(std::exchange(_output, -1));
    ::waitpid(std::exchange(_process, 0), &status, 0);
    const bool isChosen = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    std::string path = _text.substr(0, _text.find_last_not_of('\n') + 1);
    const Chosen chosen = std::exchange(_chosen, {});
    chosen(isChosen && !path.empty() ? std::optional(std::move(path)) : std::nullopt);
}

}  // namespace kalim
