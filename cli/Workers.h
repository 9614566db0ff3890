#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kalim::cli {

// Does numbered tasks in processes of their own, several at a time, so that one that crashes takes
// its task along and nothing else. The processes are forked as they are needed: the caller must not
// have threads or connections that a fork would break.
class Workers {
public:
    // Runs in a worker. Empty on success, else what went wrong, beginning with the task's name.
    using Task = std::function<std::string(std::size_t number)>;
    using Name = std::function<std::string(std::size_t number)>;
    // Told in the caller's process as a task is done, in whatever order.
    using Done = std::function<void(std::size_t number, const std::string& problem)>;

    Workers(Task task, Name name, Done done)
        : _task(std::move(task)), _name(std::move(name)), _done(std::move(done)) {}
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    // Returns when all are done.
    void run(const std::vector<std::size_t>& numbers, std::size_t atATime);

private:
    struct Worker {
        pid_t process = 0;
        // Tasks go out, and what has become of them comes in.
        int tasks = -1;
        int results = -1;
        std::size_t number = 0;
    };

    bool start(std::size_t number);
    [[noreturn]] void work(int tasks, int results) const;
    static bool give(const Worker& worker, std::size_t number);
    void listen();
    void take(Worker& worker);
    std::string end(Worker& worker);

    Task _task;
    Name _name;
    Done _done;
    // The numbers that nobody has yet, the next one last.
    std::vector<std::size_t> _waiting;
    std::vector<Worker> _workers;
};

}  // namespace kalim::cli
