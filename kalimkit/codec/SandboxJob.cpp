#include "kalimkit/codec/SandboxJob.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
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

    // What has to be zeroed and mapped is so at once, which costs less than page by page.
    std::uint8_t* allocate(std::size_t size) override {
        void* const room =
            size == 0 || size > _request.maxMemory
                ? MAP_FAILED
                : ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, _memory,
                         static_cast<off_t>(_request.outputOffset));
        _lacksRoom = room == MAP_FAILED;
        if (_lacksRoom) return nullptr;
        _report->outputSize = size;
        return static_cast<std::uint8_t*>(room);
    }

    std::span<std::uint8_t> facts() override { return _report->facts; }

private:
    const SandboxRequest& _request;
    int _memory;
    SandboxReport* _report = nullptr;
    std::array<ByteSpan, Sandbox::maxInputs> _inputs;
    bool _lacksRoom = false;
};

bool limit(int resource, std::uint64_t most) {
    const rlimit limits{most, most};
    return ::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits) == 0;
}

bool giveUpRights(const SandboxRequest& request, SandboxFilter& filter) {
    const std::uint64_t mapped = mappedBytes();
    const auto seconds = static_cast<std::uint64_t>(std::ceil(request.maxSeconds));
    // The clock ends the process earlier, unless its helper is gone.
    return mapped > 0 && limit(RLIMIT_AS, mapped + request.maxMemory) &&
           limit(RLIMIT_CPU, seconds + 1) && limit(RLIMIT_CORE, 0) && limit(RLIMIT_FSIZE, 0) &&
           limit(RLIMIT_NOFILE, 0) && filter.protect();
}

std::optional<std::string> tryJob(const SandboxRequest& request, JobMemory& memory) {
    try {
        return request.job(memory.inputs(), memory);
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

}  // namespace

void runSandboxJob(const SandboxRequest& request, int memory, pid_t helper, SandboxFilter& filter) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The helper may have gone just before.
    if (::getppid() != helper) ::_exit(1);
    ::prctl(PR_SET_NAME, "kalim-decoder");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        std::signal(signal, SIG_DFL);
    JobMemory shared(request, memory);
    if (!shared.map()) ::_exit(1);
    shared.report().state = SandboxReport::State::Unprotected;
    if (!giveUpRights(request, filter)) ::_exit(0);
    shared.report().state = SandboxReport::State::Running;
    const auto problem = tryJob(request, shared);
    shared.report().state = SandboxReport::State::Done;
    if (problem) tell(shared.report(), *problem, shared.lacksRoom() || *problem == notEnoughMemory);
    ::_exit(0);
}

}  // namespace kalim::codec
