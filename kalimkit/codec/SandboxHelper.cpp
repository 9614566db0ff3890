#include "kalimkit/codec/SandboxHelper.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "kalimkit/codec/SandboxFilter.h"
#include "kalimkit/codec/SandboxJob.h"
#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

namespace {

// Where keepOnly() puts the socket.
constexpr int socketNumber = 3;

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

class Helper {
public:
    [[noreturn]] void serve() {
        SandboxRequest request;
        int memory = -1;
        while (receive(request, memory)) {
            const SandboxAnswer answer =
                runSandboxJob(request, request.job, memory, _filter, handOver, socketNumber);
            ::close(memory);
            if (answer.end != SandboxAnswer::End::Finished) send(answer);
        }
        ::_exit(0);
    }

private:
    static void send(const SandboxAnswer& answer) {
        ::send(socketNumber, &answer, sizeof answer, MSG_NOSIGNAL);
    }

    // Lets the program take what there is.
    static void handOver(const SandboxAnswer& answer) {
        send(answer);
        char taken = 0;
        while (::recv(socketNumber, &taken, sizeof taken, 0) < 0 && errno == EINTR) {
        }
    }

    SandboxFilter _filter;
};

}  // namespace

void runSandboxHelper(int socket) {
    ::prctl(PR_SET_NAME, "kalim-helper");
    // A key that interrupts the program reaches its helper as well, but it is the program's to say.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGTSTP})
        std::signal(signal, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
    std::array<int, 1> kept{socket};
    keepOnly(kept);
    Helper().serve();
}

}  // namespace kalim::codec
