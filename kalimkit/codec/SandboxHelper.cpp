#include "kalimkit/codec/SandboxHelper.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

#include "kalimkit/codec/SandboxFilter.h"
#include "kalimkit/codec/SandboxJob.h"
#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

namespace {

constexpr int socketNumber = 3;

// Standard streams lead nowhere, so that nothing that is opened takes their numbers. The sanitizers
// may speak.
void closeInherited(int socket) {
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    // Not a number that is about to be taken.
    const int kept = ::fcntl(socket, F_DUPFD_CLOEXEC, socketNumber + 1);
    ::dup2(nowhere, STDIN_FILENO);
    ::dup2(nowhere, STDOUT_FILENO);
#if !defined(__SANITIZE_ADDRESS__)
    ::dup2(nowhere, STDERR_FILENO);
#endif
    ::dup2(kept, socketNumber);
    ::close_range(socketNumber + 1, ~0U, 0);
}

// Takes a request and the memory that comes along; false when there will be no more.
bool receive(SandboxRequest& request, int& memory) {
    iovec part{&request, sizeof request};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof memory)> control{};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    ssize_t received = 0;
    do {
        received = ::recvmsg(socketNumber, &message, MSG_CMSG_CLOEXEC);
    } while (received < 0 && errno == EINTR);
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (received != sizeof request || header == nullptr) return false;
    std::memcpy(&memory, CMSG_DATA(header), sizeof memory);
    return true;
}

// Waits until nobody holds the other end of the pipe any more, which is when the process is gone.
// False when it has not gone in time; where the program is, nobody needs the answer.
bool waitForEnd(int lifeline, double seconds) {
    timespec begun{};
    ::clock_gettime(CLOCK_MONOTONIC, &begun);
    for (;;) {
        timespec now{};
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        const double passed = static_cast<double>(now.tv_sec - begun.tv_sec) +
                              static_cast<double>(now.tv_nsec - begun.tv_nsec) / 1e9;
        const double rest = std::ceil(std::max(0.0, seconds - passed) * 1000);
        std::array<pollfd, 2> ends{{{lifeline, POLLIN, 0}, {socketNumber, 0, 0}}};
        const int ready = ::poll(ends.data(), ends.size(), static_cast<int>(std::min(rest, 1e9)));
        // With the helper goes what it has forked.
        if (ends[1].revents != 0) ::_exit(0);
        if (ready > 0) return true;
        if (ready == 0) return false;
    }
}

class Helper {
public:
    [[noreturn]] void serve() {
        SandboxRequest request;
        int memory = -1;
        while (receive(request, memory)) {
            const SandboxAnswer answer = run(request, memory);
            ::close(memory);
            ::send(socketNumber, &answer, sizeof answer, MSG_NOSIGNAL);
        }
        ::_exit(0);
    }

private:
    SandboxAnswer run(const SandboxRequest& request, int memory) {
        std::array<int, 2> lifeline{};
        if (::pipe2(lifeline.data(), O_CLOEXEC) != 0)
            return {SandboxAnswer::End::NeverBegan, errno};
        const pid_t process = ::fork();
        const int error = errno;
        if (process == 0) {
            ::close(socketNumber);
            ::close(lifeline[0]);
            runSandboxJob(request, memory, _self, _filter);
        }
        ::close(lifeline[1]);
        SandboxAnswer answer{SandboxAnswer::End::NeverBegan, error};
        if (process > 0) answer = await(process, lifeline[0], request.maxSeconds);
        ::close(lifeline[0]);
        return answer;
    }

    static SandboxAnswer await(pid_t process, int lifeline, double seconds) {
        const bool isInTime = waitForEnd(lifeline, seconds);
        if (!isInTime) ::kill(process, SIGKILL);
        int status = 0;
        while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
        if (!isInTime) return {SandboxAnswer::End::TookTooLong, 0};
        if (WIFSIGNALED(status)) {
            const bool isTime = WTERMSIG(status) == SIGXCPU;
            return {isTime ? SandboxAnswer::End::TookTooLong : SandboxAnswer::End::Signalled,
                    WTERMSIG(status)};
        }
        return {SandboxAnswer::End::Exited, WEXITSTATUS(status)};
    }

    pid_t _self = ::getpid();
    SandboxFilter _filter;
};

}  // namespace

void runSandboxHelper(int socket) {
    ::prctl(PR_SET_NAME, "kalim-helper");
    // A key that interrupts the program reaches its helper as well, but it is the program's to say.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGTSTP})
        std::signal(signal, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
    closeInherited(socket);
    Helper().serve();
}

}  // namespace kalim::codec
