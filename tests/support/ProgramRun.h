#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kalim::test {

// An empty folder of its own, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    // Leaves the folder where it is, so that somebody can look into it.
    void keep() { _keep = true; }

private:
    std::filesystem::path _path;
    bool _keep = false;
};

std::string readText(const std::filesystem::path& path);
void writeText(const std::filesystem::path& path, const std::string& text);

// Tells what became of a program.
struct ProgramRun {
    // Holds the exit status; 128 and the signal's number after a signal.
    int status = -1;
    std::string output;
    std::string errors;
};

// Where a program's standard output goes, if not into ProgramRun::output.
enum class OutputTo { Pipe, FullDevice, ClosedPipe };

// Runs a program in a folder with a text as its standard input, and waits for its end.
ProgramRun runProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::filesystem::path& folder, const std::string& input = {},
                      OutputTo outputTo = OutputTo::Pipe);

}  // namespace kalim::test
