#include "cli/Workers.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "kalimkit/codec/Sandbox.h"

namespace kalim::cli {

namespace {

// Both are whole or nothing: the other end may be gone.
bool writeAll(int descriptor, const void* bytes, std::size_t count) {
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = ::write(descriptor, next, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool readAll(int descriptor, void* bytes, std::size_t count) {
    auto* next = static_cast<char*>(bytes);
    while (count > 0) {
        const ssize_t got = ::read(descriptor, next, count);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        next += got;
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

}  // namespace

Workers::~Workers() {
    for (Worker& worker : _workers)
        end(worker);
}

void Workers::run(const std::vector<std::size_t>& numbers, std::size_t atATime) {
    _waiting.assign(numbers.rbegin(), numbers.rend());
    while (!_waiting.empty() || !_workers.empty()) {
        // A worker that has crashed is replaced here.
        while (!_waiting.empty() && _workers.size() < atATime) {
            const std::size_t number = _waiting.back();
            _waiting.pop_back();
            if (start(number)) continue;
            _done(number, _name(number) + ": there is no process for it: " + std::strerror(errno));
        }
        if (!_workers.empty()) listen();
    }
}

bool Workers::start(std::size_t number) {
    int tasks[2];
    int results[2];
    if (::pipe2(tasks, O_CLOEXEC) != 0) return false;
    if (::pipe2(results, O_CLOEXEC) != 0) {
        ::close(tasks[0]);
        ::close(tasks[1]);
        return false;
    }
    // What waits to be written would be written twice.
    std::fflush(nullptr);
    const pid_t process = ::fork();
    if (process == 0) {
        // The others hear of their end only when nobody else has their pipes.
        for (const Worker& worker : _workers) {
            ::close(worker.tasks);
            ::close(worker.results);
        }
        ::close(tasks[1]);
        ::close(results[0]);
        work(tasks[0], results[1]);
    }
    ::close(tasks[0]);
    ::close(results[1]);
    Worker worker{process, tasks[1], results[0], number};
    if (process < 0) {
        ::close(worker.tasks);
        ::close(worker.results);
        return false;
    }
    _workers.push_back(worker);
    // One that is gone already is noticed at its results.
    give(_workers.back(), number);
    return true;
}

void Workers::work(int tasks, int results) const {
    // The other's helper goes with the other.
    codec::Sandbox::start();
    std::size_t number = 0;
    while (readAll(tasks, &number, sizeof number)) {
        const std::string problem = _task(number);
        const std::size_t length = problem.size();
        if (!writeAll(results, &length, sizeof length)) break;
        if (!writeAll(results, problem.data(), length)) break;
    }
    codec::Sandbox::stop();
    // What the process that forked has at its end is not this one's business.
    ::_exit(0);
}

bool Workers::give(const Worker& worker, std::size_t number) {
    return writeAll(worker.tasks, &number, sizeof number);
}

void Workers::listen() {
    std::vector<pollfd> ends;
    for (const Worker& worker : _workers)
        ends.push_back({worker.results, POLLIN, 0});
    if (::poll(ends.data(), ends.size(), -1) < 0) return;
    for (const pollfd& ready : ends) {
        if (ready.revents == 0) continue;
        take(*std::ranges::find(_workers, ready.fd, &Worker::results));
    }
    std::erase_if(_workers, [](const Worker& worker) { return worker.process == 0; });
}

void Workers::take(Worker& worker) {
    std::size_t length = 0;
    std::string problem;
    bool isWhole = readAll(worker.results, &length, sizeof length);
    if (isWhole) {
        problem.resize(length);
        isWhole = readAll(worker.results, problem.data(), length);
    }
    const std::size_t number = worker.number;
    if (!isWhole) {
        problem = _name(number) + ": " + end(worker);
    } else if (_waiting.empty()) {
        end(worker);
    } else {
        worker.number = _waiting.back();
        _waiting.pop_back();
        give(worker, worker.number);
    }
    _done(number, problem);
}

// What has become of it.
std::string Workers::end(Worker& worker) {
    ::close(worker.tasks);
    ::close(worker.results);
    int status = 0;
    while (::waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    worker.process = 0;
    if (!WIFSIGNALED(status)) return "the process that worked on it has ended";
    return std::string("the process that worked on it was ended: ") + ::strsignal(WTERMSIG(status));
}

}  // namespace kalim::cli
