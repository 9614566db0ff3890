#include "kalimkit/host/sdl/PictureClipboard.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <vector>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"

extern char** environ;

namespace kalim::PictureClipboard {

namespace {

// Milliseconds without any progress after which the owner of the clipboard is given up.
constexpr int patience = 3000;
// The status that a program's start leaves where there is no such program.
constexpr int noProgram = 127;

// xclip, with one of its ends connected to this process.
class Xclip {
public:
    // `end` is the descriptor of the program that is connected.
    explicit Xclip(int end) {
        int ends[2] = {-1, -1};
        // A socket, so that writing to one that has gone raises no signal.
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return;
        _own = ends[0];
        start(end, ends[1]);
        ::close(ends[1]);
    }
    ~Xclip() {
        closeOwn();
        waitForEnd();
    }
    Xclip(const Xclip&) = delete;
    Xclip& operator=(const Xclip&) = delete;

    bool write(const codec::Bytes& bytes) {
        std::size_t done = 0;
        while (done < bytes.size() && isReady(POLLOUT)) {
            const ssize_t count =
                ::send(_own, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count < 0 && errno != EINTR && errno != EAGAIN) return false;
            if (count > 0) done += static_cast<std::size_t>(count);
        }
        return done == bytes.size();
    }

    // All that it says; fewer after an error, and nothing where it is no picture or a larger one
    // than any file may be.
    codec::Bytes readPicture() {
        constexpr codec::DecodeLimits limits;
        codec::Bytes bytes;
        std::array<std::uint8_t, 65536> part{};
        while (isReady(POLLIN)) {
            const ssize_t count = ::recv(_own, part.data(), part.size(), 0);
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) break;
            bytes.insert(bytes.end(), part.data(), part.data() + count);
            const auto start =
                codec::ByteSpan(bytes).first(std::min(bytes.size(), codec::startLength));
            const bool isRefused =
                start.size() == codec::startLength && !codec::mayBePicture(start);
            if (!isRefused && bytes.size() <= limits.maxFileBytes) continue;
            ::kill(_process, SIGTERM);
            return {};
        }
        return bytes;
    }

    // Its exit status; `noProgram` where it could not be started.
    int finish() {
        closeOwn();
        return waitForEnd();
    }

private:
    void start(int end, int other) {
        const bool isReading = end == STDOUT_FILENO;
        std::vector<const char*> words{"xclip", "-selection", "clipboard", "-t", "image/png"};
        words.push_back(isReading ? "-o" : "-i");
        words.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        // What it has to say, and what it leaves behind to serve the clipboard, hold nothing open.
        for (int i = 0; i < 3; ++i)
            if (i != end) ::posix_spawn_file_actions_addopen(&actions, i, "/dev/null", O_RDWR, 0);
        ::posix_spawn_file_actions_adddup2(&actions, other, end);
        if (::posix_spawnp(&_process, words[0], &actions, nullptr,
                           const_cast<char* const*>(words.data()), environ) != 0) {
            _process = -1;
        }
        ::posix_spawn_file_actions_destroy(&actions);
    }

    // One that makes no progress is ended.
    bool isReady(short what) const {
        pollfd descriptor{_own, what, 0};
        if (_process <= 0) return false;
        int count = 0;
        do {
            count = ::poll(&descriptor, 1, patience);
        } while (count < 0 && errno == EINTR);
        if (count == 1) return true;
        ::kill(_process, SIGTERM);
        return false;
    }

    void closeOwn() {
        if (_own >= 0) ::close(_own);
        _own = -1;
    }

    int waitForEnd() {
        if (_process <= 0) return _status;
        int status = 0;
        while (::waitpid(_process, &status, 0) < 0 && errno == EINTR) {
        }
        _process = -1;
        return _status = WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    }

    int _own = -1;
    pid_t _process = -1;
    int _status = noProgram;
};

}  // namespace

bool put(const codec::Bytes& png) {
    Xclip xclip(STDIN_FILENO);
    return xclip.write(png) && xclip.finish() == 0;
}

std::optional<codec::Bytes> get() {
    Xclip xclip(STDOUT_FILENO);
    codec::Bytes png = xclip.readPicture();
    const int status = xclip.finish();
    if (status == noProgram) return std::nullopt;
    return status == 0 ? png : codec::Bytes();
}

}  // namespace kalim::PictureClipboard
