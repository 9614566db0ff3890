#include "kalimkit/codec/Sandbox.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/SandboxHelper.h"
#include "kalimkit/codec/SandboxJob.h"
#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

namespace {

class Descriptor {
public:
    explicit Descriptor(int number = -1) : _number(number) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return _number; }
    void reset(int number = -1) {
        if (_number >= 0) ::close(_number);
        _number = number;
    }

private:
    int _number;
};

// The process that forks the others, seen from the program.
class HelperProcess {
public:
    ~HelperProcess() { stop(); }

    // False where the system does not let it be, with errno.
    bool start() {
        if (_owner == ::getpid() && _socket.number() >= 0) return true;
        stop();
        std::array<int, 2> ends{};
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
        _process = ::fork();
        if (_process == 0) runSandboxHelper(ends[1]);
        ::close(ends[1]);
        _socket.reset(ends[0]);
        _owner = ::getpid();
        if (_process > 0) return true;
        _socket.reset();
        return false;
    }

    // One that belongs to the process which this one was forked from goes on.
    void stop() {
        _socket.reset();
        if (_owner == ::getpid() && _process > 0) {
            while (::waitpid(_process, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
        _process = 0;
    }

    // One that was killed is noticed by this, and replaced. False as above.
    bool ask(const SandboxRequest& request, int memory) {
        if (!start()) return false;
        if (send(request, memory)) return true;
        kill();
        return start() && send(request, memory);
    }

    bool send(const SandboxRequest& request, int memory) const {
        iovec part{const_cast<SandboxRequest*>(&request), sizeof request};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof memory)> control{};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof memory);
        std::memcpy(CMSG_DATA(header), &memory, sizeof memory);
        return ::sendmsg(_socket.number(), &message, MSG_NOSIGNAL) == sizeof request;
    }

    // Nothing when the helper is gone, or silent for longer than it ought to be.
    std::optional<SandboxAnswer> receive(double seconds) const {
        constexpr double patience = 5;
        pollfd end{_socket.number(), POLLIN, 0};
        const double milliseconds = std::min((seconds + patience) * 1000, 1e9);
        int ready = 0;
        do {
            ready = ::poll(&end, 1, static_cast<int>(milliseconds));
        } while (ready < 0 && errno == EINTR);
        SandboxAnswer answer;
        if (ready <= 0 || ::recv(_socket.number(), &answer, sizeof answer, 0) != sizeof answer)
            return std::nullopt;
        return answer;
    }

    void kill() {
        if (_process > 0) ::kill(_process, SIGKILL);
        stop();
    }

private:
    Descriptor _socket;
    pid_t _process = 0;
    // Who has forked it.
    pid_t _owner = 0;
};

struct State {
    std::mutex mutex;
    HelperProcess helper;
    std::optional<std::string> refusal;
};

State& state() {
    static State state;
    return state;
}

// Takes the inputs to the job and its output back.
class SharedMemory {
public:
    SharedMemory(std::span<const ByteSpan> inputs, SandboxRequest& request) {
        _file.reset(::memfd_create("kalim-job", MFD_CLOEXEC | MFD_ALLOW_SEALING));
        _isReady = _file.number() >= 0;
        std::uint64_t offset = sandboxPage;
        for (std::size_t i = 0; i < inputs.size(); ++i) {
            request.inputSizes[i] = inputs[i].size();
            _isReady = _isReady && write(inputs[i], offset);
            offset += roundedToPages(inputs[i].size());
        }
        request.inputCount = inputs.size();
        request.outputOffset = offset;
        _size = offset + roundedToPages(request.maxMemory);
        // It costs what is written of it. Nobody can cut off what the program is going to read.
        _isReady = _isReady && ::ftruncate(_file.number(), static_cast<off_t>(_size)) == 0 &&
                   ::fcntl(_file.number(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW) == 0;
        _outputOffset = offset;
        if (!_isReady) _error = errno;
    }

    // Why it is not there, or 0.
    int error() const { return _error; }
    int number() const { return _file.number(); }

    bool readReport(SandboxReport& report) const {
        return ::pread(_file.number(), &report, sizeof report, 0) == sizeof report;
    }

    // Only when the job's process is gone: nobody else has this memory then.
    std::shared_ptr<std::uint8_t[]> takeOutput(std::size_t size) {
        const auto offset = static_cast<off_t>(_outputOffset);
        const std::uint64_t end = _outputOffset + roundedToPages(size);
        constexpr int dropping = FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE;
        ::fallocate(_file.number(), dropping, 0, offset);
        if (end < _size)
            ::fallocate(_file.number(), dropping, static_cast<off_t>(end),
                        static_cast<off_t>(_size - end));
        void* const output = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                    MAP_SHARED | MAP_POPULATE, _file.number(), offset);
        if (output == MAP_FAILED) return nullptr;
        return {static_cast<std::uint8_t*>(output),
                [size](std::uint8_t* bytes) { ::munmap(bytes, size); }};
    }

private:
    bool write(ByteSpan bytes, std::uint64_t offset) const {
        while (!bytes.empty()) {
            const ssize_t written =
                ::pwrite(_file.number(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(written));
            offset += static_cast<std::uint64_t>(written);
        }
        return true;
    }

    Descriptor _file;
    std::uint64_t _size = 0;
    std::uint64_t _outputOffset = 0;
    bool _isReady = false;
    int _error = 0;
};

SandboxOutcome failure(std::string sentence) {
    SandboxOutcome outcome;
    outcome.error = std::move(sentence);
    return outcome;
}

SandboxOutcome refuse(const std::string& what, int error) {
    SandboxOutcome outcome =
        failure(what + (error == 0 ? "" : std::string(": ") + std::strerror(error)));
    outcome.isRefused = true;
    state().refusal = outcome.error;
    return outcome;
}

SandboxRequest requestWith(const SandboxCaps& caps) {
    SandboxRequest request;
    request.maxMemory = caps.maxMemory;
    request.maxSeconds = caps.maxSeconds;
    return request;
}

std::string timeText(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", seconds);
    return std::string("the picture takes longer than ") + text.data() + " s";
}

std::optional<std::string> problemOf(const SandboxAnswer& answer, const SandboxCaps& caps) {
    switch (answer.end) {
        case SandboxAnswer::End::TookTooLong:
            return timeText(caps.maxSeconds);
        case SandboxAnswer::End::Signalled:
            return "the decoder stopped (signal " + std::to_string(answer.number) + ")";
        default:
            break;
    }
    if (answer.number == 0) return std::nullopt;
    return "the decoder stopped (status " + std::to_string(answer.number) + ")";
}

// Believes nothing that stands in the report.
SandboxOutcome outcomeOf(SharedMemory& memory, const SandboxAnswer& answer,
                         const SandboxCaps& caps) {
    if (answer.end == SandboxAnswer::End::NeverBegan)
        return refuse("there is no process for decoding", answer.number);
    if (auto problem = problemOf(answer, caps)) return failure(std::move(*problem));
    SandboxReport report;
    if (!memory.readReport(report)) return failure("the decoder's answer cannot be read");
    switch (report.state) {
        case SandboxReport::State::Unprotected:
            return refuse("the system lets no process be without rights", 0);
        case SandboxReport::State::LacksMemory:
            return failure("the picture needs more than " + memoryText(caps.maxMemory));
        case SandboxReport::State::Failed:
            return failure({report.message.data(),
                            std::min<std::size_t>(report.messageSize, report.message.size())});
        case SandboxReport::State::Done:
            break;
        default:
            return failure("the decoder's answer is damaged");
    }
    SandboxOutcome outcome;
    outcome.facts = report.facts;
    if (report.outputSize == 0) return outcome;
    if (report.outputSize > caps.maxMemory) return failure("the decoder's answer is damaged");
    outcome.size = report.outputSize;
    outcome.bytes = memory.takeOutput(outcome.size);
    if (!outcome.bytes) return failure(notEnoughMemory);
    return outcome;
}

}  // namespace

SandboxOutput::~SandboxOutput() = default;

void Sandbox::start() {
    const std::scoped_lock lock(state().mutex);
    state().helper.start();
}

void Sandbox::stop() {
    const std::scoped_lock lock(state().mutex);
    state().helper.stop();
}

std::optional<std::string> Sandbox::refusal() {
    const std::scoped_lock lock(state().mutex);
    return state().refusal;
}

SandboxOutcome Sandbox::run(Job job, std::span<const ByteSpan> inputs, const SandboxCaps& caps) {
    const std::scoped_lock lock(state().mutex);
    HelperProcess& helper = state().helper;
    SandboxRequest request = requestWith(caps);
    request.job = job;
    SharedMemory memory(inputs, request);
    if (memory.error() != 0) return refuse("there is no memory to be shared", memory.error());
    if (!helper.ask(request, memory.number()))
        return refuse("there is no process for decoding", errno);
    const auto answer = helper.receive(caps.maxSeconds);
    if (!answer) {
        helper.kill();
        return failure("the decoder's process was ended");
    }
    return outcomeOf(memory, *answer, caps);
}

SandboxOutcome Sandbox::runForked(
    const std::function<std::optional<std::string>(SandboxOutput& output)>& work,
    const SandboxCaps& caps) {
    const std::scoped_lock lock(state().mutex);
    static SandboxFilter filter;
    SandboxRequest request = requestWith(caps);
    SharedMemory memory({}, request);
    if (memory.error() != 0) return refuse("there is no memory to be shared", memory.error());
    const auto withoutInputs = [&work](std::span<const ByteSpan>, SandboxOutput& output) {
        return work(output);
    };
    return outcomeOf(memory, runSandboxJob(request, withoutInputs, memory.number(), filter), caps);
}

}  // namespace kalim::codec
