#include "kalimkit/codec/SandboxJob.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <new>
#include <string>

#include "kalimkit/codec/DecodeSteps.h"

namespace kalim::codec {

namespace {

// Bytes of address space that this process has.
std::uint64_t mappedBytes() {
    unsigned long long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "re");
    if (file == nullptr) return 0;
    const int found = std::fscanf(file, "%llu", &pages);
    std::fclose(file);
    return found == 1 ? pages * sandboxPage : 0;
}

class JobMemory : public SandboxOutput {
public:
    JobMemory(const SandboxRequest& request, int memory) : _request(request), _memory(memory) {}

    // Before anything is given up. False where there is no room for it.
    bool map() {
        _report = static_cast<SandboxReport*>(
            ::mmap(nullptr, sandboxPage, PROT_READ | PROT_WRITE, MAP_SHARED, _memory, 0));
        if (_report == MAP_FAILED) return false;
        const std::size_t size = _request.outputOffset - sandboxPage;
        const void* const inputs =
            size == 0
                ? nullptr
                : ::mmap(nullptr, size, PROT_READ, MAP_SHARED | MAP_POPULATE, _memory, sandboxPage);
        if (inputs == MAP_FAILED) return false;
        const auto* next = static_cast<const std::uint8_t*>(inputs);
        for (std::size_t i = 0; i < _request.inputCount; ++i) {
            const std::size_t length = _request.inputSizes[i];
            _inputs[i] = {next, length};
            next += roundedToPages(length);
        }
        return true;
    }

    std::span<const ByteSpan> inputs() const { return {_inputs.data(), _request.inputCount}; }
    SandboxReport& report() { return *_report; }
    bool lacksRoom() const { return _lacksRoom; }

    std::uint8_t* allocate(std::size_t size) override {
        std::uint8_t* const room =
            size == 0 || size > _request.maxMemory ? nullptr : makeRoom(size);
        _lacksRoom = room == nullptr;
        _report->outputSize = size;
        _report->outputAddress = reinterpret_cast<std::uintptr_t>(room);
        return room;
    }

    std::span<std::uint8_t> facts() override { return _report->facts; }

private:
    std::uint8_t* makeRoom(std::size_t size) const {
        if (_request.isOutputShared == 0) return mapLargePages(size);
        // What has to be zeroed and mapped is so at once, which costs less than page by page.
        void* const room = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                                  _memory, static_cast<off_t>(_request.outputOffset));
        return room == MAP_FAILED ? nullptr : static_cast<std::uint8_t*>(room);
    }

    const SandboxRequest& _request;
    int _memory;
    SandboxReport* _report = nullptr;
    std::array<ByteSpan, Sandbox::maxInputs> _inputs;
    bool _lacksRoom = false;
};

enum class Life { Finished, Gone, TookTooLong };

// Waits for the byte with which the process says that it has finished, or until nobody holds the
// other end of the pipe any more, which is when the process is gone. Where the other end of
// `watched` is, nobody needs the answer.
Life waitForNews(int lifeline, double seconds, int watched) {
    timespec begun{};
    ::clock_gettime(CLOCK_MONOTONIC, &begun);
    for (;;) {
        timespec now{};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        const double passed = static_cast<double>(now.tv_sec - begun.tv_sec) +
                              static_cast<double>(now.tv_nsec - begun.tv_nsec) / 1e9;
        const double rest = std::ceil(std::max(0.0, seconds - passed) * 1000);
        std::array<pollfd, 2> ends{{{lifeline, POLLIN, 0}, {watched, 0, 0}}};
        const int ready = ::poll(ends.data(), ends.size(), static_cast<int>(std::min(rest, 1e9)));
        // What it has forked goes with it.
        if (ends[1].revents != 0) ::_exit(0);
        char news = 0;
        if (ready > 0) return ::read(lifeline, &news, 1) == 1 ? Life::Finished : Life::Gone;
        if (ready == 0) return Life::TookTooLong;
    }
}

bool limit(int resource, std::uint64_t most, std::uint64_t end) {
    const rlimit limits{most, end};
    return ::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits) == 0;
}

bool limit(int resource, std::uint64_t most) {
    return limit(resource, most, most);
}

bool giveUpRights(const SandboxRequest& request, SandboxFilter& filter) {
    const std::uint64_t mapped = mappedBytes();
    const auto seconds = static_cast<std::uint64_t>(std::ceil(request.maxSeconds));
    return mapped > 0 && limit(RLIMIT_AS, mapped + request.maxMemory) &&
           limit(RLIMIT_CPU, seconds, seconds + 1) && limit(RLIMIT_CORE, 0) &&
           limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_NOFILE, isSanitized ? 16 : 0) && filter.protect();
}

std::optional<std::string> tryWork(const SandboxWork& work, JobMemory& memory) {
    try {
        return work(memory.inputs(), memory);
    } catch (const std::bad_alloc&) {
        return notEnoughMemory;
    } catch (const std::exception& error) {
        return error.what();
    }
}

void tell(SandboxReport& report, const std::string& problem, bool lacksMemory) {
    const std::size_t size = std::min(problem.size(), report.message.size());
    std::copy_n(problem.data(), size, report.message.data());
    report.messageSize = static_cast<std::uint32_t>(size);
    report.state = lacksMemory ? SandboxReport::State::LacksMemory : SandboxReport::State::Failed;
}

[[noreturn]] void live(const SandboxRequest& request, const SandboxWork& work, int memory,
                       int lifeline, SandboxFilter& filter) {
    ::prctl(PR_SET_NAME, "kalim-decoder");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        std::signal(signal, SIG_DFL);
    std::array<int, 2> kept{memory, lifeline};
    keepOnly(kept);
    JobMemory shared(request, kept[0]);
    if (!shared.map()) ::_exit(1);
    // What is missing, the work tells.
    for (const ByteSpan input : shared.inputs())
        prepareImport(input);
    shared.report().state = SandboxReport::State::Unprotected;
    if (!giveUpRights(request, filter)) ::_exit(0);
    shared.report().state = SandboxReport::State::Running;
    const auto problem = tryWork(work, shared);
    shared.report().state = SandboxReport::State::Done;
    if (problem) tell(shared.report(), *problem, shared.lacksRoom() || *problem == notEnoughMemory);
    constexpr char news = 0;
    // Until it is ended, its memory can be read.
    if (::write(kept[1], &news, 1) == 1) {
        for (;;)
            ::pause();
    }
    ::_exit(1);
}

SandboxAnswer await(pid_t process, Life life, const SandboxTaking& take) {
    if (life == Life::Finished) take({SandboxAnswer::End::Finished, process});
    if (life != Life::Gone) ::kill(process, SIGKILL);
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (life == Life::Finished) return {SandboxAnswer::End::Finished, process};
    if (life == Life::TookTooLong) return {SandboxAnswer::End::TookTooLong, 0};
    if (!WIFSIGNALED(status)) return {SandboxAnswer::End::Exited, WEXITSTATUS(status)};
    const bool isTime = WTERMSIG(status) == SIGXCPU;
    return {isTime ? SandboxAnswer::End::TookTooLong : SandboxAnswer::End::Signalled,
            WTERMSIG(status)};
}

}  // namespace

void keepOnly(std::span<int> descriptors) {
    constexpr int first = STDERR_FILENO + 1;
    const int end = first + static_cast<int>(descriptors.size());
    // First to numbers that are not about to be taken.
    for (int& descriptor : descriptors)
        descriptor = ::fcntl(descriptor, F_DUPFD_CLOEXEC, end);
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = STDIN_FILENO; stream < first; ++stream)
        if (stream != STDERR_FILENO || !isSanitized) ::dup2(nowhere, stream);
    for (int number = first; int& descriptor : descriptors)
        descriptor = ::dup2(descriptor, number++);
    ::close_range(static_cast<unsigned>(end), ~0U, 0);
}

std::uint8_t* mapLargePages(std::size_t size) {
    void* const room =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) return nullptr;
    ::madvise(room, size, MADV_HUGEPAGE);
    return static_cast<std::uint8_t*>(room);
}

SandboxAnswer runSandboxJob(const SandboxRequest& request, const SandboxWork& work, int memory,
                            SandboxFilter& filter, const SandboxTaking& take, int watched) {
    std::array<int, 2> lifeline{};
    if (::pipe2(lifeline.data(), O_CLOEXEC) != 0) return {SandboxAnswer::End::NeverBegan, errno};
    const pid_t parent = ::getpid();
    const pid_t process = ::fork();
    const int error = errno;
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        // The parent may have gone just before.
        if (::getppid() != parent) ::_exit(1);
        live(request, work, memory, lifeline[1], filter);
    }
    ::close(lifeline[1]);
    SandboxAnswer answer{SandboxAnswer::End::NeverBegan, error};
    if (process > 0)
        answer = await(
            process, waitForNews(lifeline[0], sandboxSlowness * request.maxSeconds, watched), take);
    ::close(lifeline[0]);
    return answer;
}

}  // namespace kalim::codec
