// A database of unfinished works, whatever its file holds.

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "fuzz/Fuzzing.h"
#include "kalimkit/store/SqliteWorkStore.h"

namespace {

// A folder of its own for the whole process; what is in it is written over by every run.
const std::string& folder() {
    static const std::string made = [] {
        std::string path = "/tmp/kalim-fuzz-XXXXXX";
        kalim::fuzz::require(::mkdtemp(path.data()) != nullptr, "a folder can be made");
        return path;
    }();
    return made;
}

void writeFile(const std::string& path, kalim::fuzz::Input input) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool isWritten =
        ::write(file, input.data(), input.size()) == static_cast<ssize_t>(input.size());
    ::close(file);
    kalim::fuzz::require(isWritten, "a file can be written");
}

}  // namespace

KALIM_FUZZ(recovery, input) {
    using namespace kalim;
    const std::string path = folder() + "/works.sqlite";
    for (const char* ending : {"", "-wal", "-shm", "-held", ".damaged"})
        ::unlink((path + ending).c_str());
    writeFile(path, input);
    store::SqliteWorkStore works(path);
    std::string first;
    works.list([&first](const std::vector<ui::WorkSummary>& summaries) {
        if (!summaries.empty()) first = summaries.front().id;
    });
    works.open(first, [](const std::optional<ui::Work>& /*work*/) {});
    works.record(first, "a step");
    const std::string id = works.begin({"picture", std::string(64, '0'), {1, 2, 3}, ""});
    works.record(id, "a step");
    works.end(id);
    works.forget(first);
    works.forgetSetAside();
}
