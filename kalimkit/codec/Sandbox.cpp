#include "kalimkit/codec/Sandbox.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/uio.h>
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

    // Has the process of a job that has Finished ended.
    void release() const { ::send(_socket.number(), "", 1, MSG_NOSIGNAL); }

    // One that was killed is noticed by this, and replaced. False as of start().
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
    // The system lets no process read another one's memory.
    bool sharesOutput = false;
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
        const std::uint64_t end = offset + roundedToPages(request.maxMemory);
        // It costs what is written of it. Nobody can cut off what the program is going to read.
        _isReady = _isReady && ::ftruncate(_file.number(), static_cast<off_t>(end)) == 0 &&
                   ::fcntl(_file.number(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW) == 0;
        _outputOffset = offset;
        _isOutputShared = request.isOutputShared != 0;
        if (!_isReady) _error = errno;
    }

    // Why it is not there, or 0.
    int error() const { return _error; }
    int number() const { return _file.number(); }

    bool readReport(SandboxReport& report) const {
        return ::pread(_file.number(), &report, sizeof report, 0) == sizeof report;
    }

    // What the job has left, wherever that is; nobody but the caller has the copy. Nothing, with
    // errno, where it cannot be read.
    std::shared_ptr<std::uint8_t[]> copyOutput(const SandboxReport& report, pid_t process) const {
        const std::size_t size = report.outputSize;
        std::uint8_t* const target = mapLargePages(size);
        if (target == nullptr) return nullptr;
        std::shared_ptr<std::uint8_t[]> room(
            target, [size](std::uint8_t* bytes) { ::munmap(bytes, size); });
        const iovec own{target, size};
        const iovec other{reinterpret_cast<void*>(report.outputAddress), size};
        const bool isRead = _isOutputShared ? read(target, size)
                                            : ::process_vm_readv(process, &own, 1, &other, 1, 0) ==
                                                  static_cast<ssize_t>(size);
        return isRead ? room : nullptr;
    }

private:
    bool read(std::uint8_t* target, std::size_t size) const {
        for (std::size_t done = 0; done < size;) {
            const ssize_t count = ::pread(_file.number(), target + done, size - done,
                                          static_cast<off_t>(_outputOffset + done));
            if (count <= 0) return false;
            done += static_cast<std::size_t>(count);
        }
        return true;
    }
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
    std::uint64_t _outputOffset = 0;
    bool _isOutputShared = false;
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
    request.isOutputShared = state().sharesOutput ? 1 : 0;
    return request;
}

std::string timeText(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", seconds);
    return std::string("the picture takes longer than ") + text.data() + " s";
}

// Of a process that has not Finished.
SandboxOutcome endOf(const SandboxAnswer& answer, const SandboxReport& report,
                     const SandboxCaps& caps) {
    const std::string number = std::to_string(answer.number);
    switch (answer.end) {
        case SandboxAnswer::End::NeverBegan:
            return refuse("there is no process for decoding", answer.number);
        case SandboxAnswer::End::TookTooLong:
            return failure(timeText(caps.maxSeconds));
        case SandboxAnswer::End::Signalled:
            return failure("the decoder stopped (signal " + number + ")");
        default:
            break;
    }
    if (report.state == SandboxReport::State::Unprotected)
        return refuse("the system lets no process be without rights", 0);
    return failure("the decoder stopped (status " + number + ")");
}

// Takes the output while the process waits.
SandboxOutcome outputOf(const SharedMemory& memory, const SandboxReport& report, pid_t process,
                        const SandboxCaps& caps) {
    SandboxOutcome outcome;
    outcome.facts = report.facts;
    if (report.outputSize == 0) return outcome;
    if (report.outputSize > caps.maxMemory) return failure("the decoder's answer is damaged");
    outcome.size = report.outputSize;
    outcome.bytes = memory.copyOutput(report, process);
    if (outcome.bytes) return outcome;
    const int error = errno;
    if (error == ENOMEM) return failure(notEnoughMemory);
    const bool isForbidden = error == EPERM || error == EACCES || error == ENOSYS;
    if (!isForbidden || state().sharesOutput) return failure("the decoder's answer is damaged");
    // It is tried once more in the other way.
    state().sharesOutput = true;
    return failure("the decoder's memory cannot be read");
}

// Believes nothing that stands in the report.
SandboxOutcome outcomeOf(const SharedMemory& memory, const SandboxAnswer& answer,
                         const SandboxCaps& caps) {
    SandboxReport report;
    if (!memory.readReport(report)) return failure("the decoder's answer cannot be read");
    if (answer.end != SandboxAnswer::End::Finished) return endOf(answer, report, caps);
    switch (report.state) {
        case SandboxReport::State::Done:
            return outputOf(memory, report, answer.number, caps);
        case SandboxReport::State::LacksMemory:
            return failure("the picture needs more than " + memoryText(caps.maxMemory));
        case SandboxReport::State::Failed:
            return failure({report.message.data(),
                            std::min<std::size_t>(report.messageSize, report.message.size())});
        default:
            return failure("the decoder's answer is damaged");
    }
}

SandboxOutcome runOnce(Sandbox::Job job, std::span<const ByteSpan> inputs,
                       const SandboxCaps& caps) {
    HelperProcess& helper = state().helper;
    SandboxRequest request = requestWith(caps);
    request.job = job;
    const SharedMemory memory(inputs, request);
    if (memory.error() != 0) return refuse("there is no memory to be shared", memory.error());
    if (!helper.ask(request, memory.number()))
        return refuse("there is no process for decoding", errno);
    const auto answer = helper.receive(sandboxSlowness * caps.maxSeconds);
    if (!answer) {
        helper.kill();
        return failure("the decoder's process was ended");
    }
    SandboxOutcome outcome = outcomeOf(memory, *answer, caps);
    if (answer->end == SandboxAnswer::End::Finished) helper.release();
    return outcome;
}

SandboxOutcome runForkedOnce(const SandboxWork& work, const SandboxCaps& caps) {
    static SandboxFilter filter;
    SandboxRequest request = requestWith(caps);
    const SharedMemory memory({}, request);
    if (memory.error() != 0) return refuse("there is no memory to be shared", memory.error());
    SandboxOutcome outcome;
    const SandboxAnswer last = runSandboxJob(
        request, work, memory.number(), filter,
        [&](const SandboxAnswer& answer) { outcome = outcomeOf(memory, answer, caps); });
    return last.end == SandboxAnswer::End::Finished ? std::move(outcome)
                                                    : outcomeOf(memory, last, caps);
}

// Another time, where the first has found out how the output can be taken.
template <typename Run>
SandboxOutcome runTaking(const Run& run) {
    const std::scoped_lock lock(state().mutex);
    const bool before = state().sharesOutput;
    SandboxOutcome outcome = run();
    return state().sharesOutput == before ? std::move(outcome) : run();
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
    return runTaking([&] { return runOnce(job, inputs, caps); });
}

SandboxOutcome Sandbox::runForked(
    const std::function<std::optional<std::string>(SandboxOutput& output)>& work,
    const SandboxCaps& caps) {
    const auto withoutInputs = [&work](std::span<const ByteSpan>, SandboxOutput& output) {
        return work(output);
    };
    return runTaking([&] { return runForkedOnce(withoutInputs, caps); });
}

}  // namespace kalim::codec
