#include "tests/support/ProgramRun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kalim::test {

namespace {

int openOrDie(const std::filesystem::path& path, int flags) {
    const int file = ::open(path.c_str(), flags, 0600);
    if (file < 0) ::_exit(127);
    return file;
}

int openOutput(OutputTo outputTo, const std::filesystem::path& file) {
    if (outputTo == OutputTo::FullDevice) return openOrDie("/dev/full", O_WRONLY);
    if (outputTo == OutputTo::Pipe) return openOrDie(file, O_WRONLY | O_CREAT | O_TRUNC);
    int ends[2];
    if (::pipe(ends) != 0) ::_exit(127);
    ::close(ends[0]);
    return ends[1];
}

int statusOf(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, 0) != child) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kalimkit-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    _path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    if (!_keep) std::filesystem::remove_all(_path, ignored);
}

std::string readText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::filesystem::path& folder, const std::string& input,
                      OutputTo outputTo) {
    // Files instead of pipes: nothing can fill up and wait.
    const TemporaryFolder streams;
    writeText(streams.path() / "input", input);
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(openOrDie(streams.path() / "input", O_RDONLY), STDIN_FILENO);
        ::dup2(openOutput(outputTo, streams.path() / "output"), STDOUT_FILENO);
        ::dup2(openOrDie(streams.path() / "errors", O_WRONLY | O_CREAT), STDERR_FILENO);
        if (::chdir(folder.c_str()) != 0) ::_exit(127);
        ::execv(program.c_str(), words.data());
        ::_exit(127);
    }
    ProgramRun run;
    run.status = child > 0 ? statusOf(child) : -1;
    run.output = readText(streams.path() / "output");
    run.errors = readText(streams.path() / "errors");
    return run;
}

}  // namespace kalim::test
