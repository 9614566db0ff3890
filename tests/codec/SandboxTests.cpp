#include "kalimkit/codec/Sandbox.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <new>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/codec/PictureFiles.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec::test {

namespace {

namespace fs = std::filesystem;
using Inputs = std::span<const ByteSpan>;
using Problem = std::optional<std::string>;

std::string statusOf(const fs::path& process) {
    std::ostringstream text;
    text << std::ifstream(process / "status").rdbuf();
    return text.str();
}

bool lives(pid_t process) {
    const std::string status = statusOf("/proc/" + std::to_string(process));
    return !status.empty() && status.find("\nState:\tZ") == std::string::npos;
}

// The living child of a process with this name; 0 for none.
pid_t childNamed(const std::string& name, pid_t parent) {
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        const std::string status = statusOf(entry.path());
        if (status.starts_with("Name:\t" + name + "\n") &&
            status.find("\nState:\tZ") == std::string::npos &&
            status.find("\nPPid:\t" + std::to_string(parent) + "\n") != std::string::npos)
            return std::stoi(entry.path().filename());
    }
    return 0;
}

bool becomesTrue(const std::function<bool()>& condition) {
    using std::chrono::milliseconds;
    for (int i = 0; i < 300; ++i, std::this_thread::sleep_for(milliseconds(10))) {
        if (condition()) return true;
    }
    return false;
}

Problem refusedWith(int result, int error) {
    return result < 0 && errno == error ? std::nullopt : Problem("it was let");
}

Problem goOnForever(Inputs /*inputs*/, SandboxOutput& /*output*/) {
    for (volatile unsigned i = 0;;)
        i = i + 1;
}

Problem copyInput(Inputs inputs, SandboxOutput& output) {
    std::uint8_t* const bytes = output.allocate(inputs[1].size());
    std::copy(inputs[1].begin(), inputs[1].end(), bytes);
    output.facts()[0] = inputs[0][0];
    return std::nullopt;
}

// From here on the system refuses this call to the process.
void forbid(std::uint32_t call) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{std::size(program), program};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

}  // namespace

TEST(Sandbox, PicturesAreThoseThatAreDecodedHere) {
    const Bytes jpeg =
        makeJpeg({.inputSpace = JCS_RGB, .fileSpace = JCS_YCbCr, .pixel = {1, 2, 3}});
    for (const Bytes& file : {jpeg, makePng({.rows = {77}}), Bytes{1, 2, 3}, Bytes()}) {
        const DecodeResult here = decode(file, "photo");
        const DecodeResult there = decodeSandboxed(file, "photo");
        EXPECT_EQ(there.error, here.error);
        EXPECT_EQ(there.bitmap, here.bitmap);
        EXPECT_EQ(there.orientation, here.orientation);
        EXPECT_EQ(there.grid, here.grid);
    }
    EXPECT_EQ(Sandbox::refusal(), std::nullopt);
}

TEST(Sandbox, InputsAndOutputsOfAnySizeGoThrough) {
    for (const std::size_t size : {1U, 4096U, 4097U, 3'000'000U}) {
        const Bytes input(size, 9);
        const Bytes first{7};
        const std::array<ByteSpan, 2> inputs{first, input};
        const SandboxOutcome outcome = Sandbox::run(copyInput, inputs);
        EXPECT_EQ(outcome.error, std::nullopt);
        ASSERT_EQ(outcome.size, size);
        EXPECT_TRUE(std::equal(input.begin(), input.end(), outcome.bytes.get()));
        EXPECT_EQ(outcome.facts[0], 7);
    }
}

TEST(Sandbox, WorkThatIsForkedHereHasWhatThereIs) {
    const Bytes known(5000, 3);
    const SandboxOutcome outcome = Sandbox::runForked([&](SandboxOutput& output) -> Problem {
        std::ranges::copy(known, output.allocate(known.size()));
        return refusedWith(::open("/etc/passwd", O_RDONLY), EPERM);
    });
    EXPECT_EQ(outcome.error, std::nullopt);
    ASSERT_EQ(outcome.size, known.size());
    EXPECT_TRUE(std::ranges::equal(known, std::span(outcome.bytes.get(), outcome.size)));
    const gfx::Bitmap bitmap(40, 30);
    for (const FileFormat format : {FileFormat::Png, FileFormat::Jpeg, FileFormat::Webp}) {
        SavingOptions options;
        options.format = format;
        EXPECT_EQ(savePictureSandboxed(bitmap, {}, options).bytes,
                  savePicture(bitmap, {}, options).bytes);
    }
}

TEST(Sandbox, AJobHasMemoryAndNothingElse) {
    struct Case {
        Sandbox::Job job;
        const char* error;
    };
    const Case cases[] = {
        {[](Inputs, SandboxOutput&) { return refusedWith(::open("/etc/passwd", O_RDONLY), EPERM); },
         nullptr},
        {[](Inputs, SandboxOutput&) { return refusedWith(::fork(), EPERM); }, nullptr},
        {[](Inputs, SandboxOutput&) -> Problem { return "it says why"; }, "it says why"},
        {[](Inputs, SandboxOutput&) -> Problem { throw std::runtime_error("it throws"); },
         "it throws"},
        {[](Inputs, SandboxOutput&) { return refusedWith(::socket(AF_INET, SOCK_STREAM, 0), 0); },
         "the decoder stopped (signal 31)"},
        {[](Inputs, SandboxOutput&) { return refusedWith(::kill(::getppid(), SIGKILL), 0); },
         "the decoder stopped (signal 31)"},
        {[](Inputs, SandboxOutput&) {
             return refusedWith(::execl("/bin/true", "true", nullptr), 0);
         },
         "the decoder stopped (signal 31)"},
        {[](Inputs, SandboxOutput&) -> Problem { ::_exit(3); }, "the decoder stopped (status 3)"},
        {[](Inputs, SandboxOutput& output) -> Problem {
             return output.allocate(std::size_t{65} << 20) ? Problem() : "no room";
         },
         "the picture needs more than 64 MiB"},
        {[](Inputs, SandboxOutput&) -> Problem {
             // The sanitizers let no allocation fail.
             for (;;) {
                 if (::mmap(nullptr, std::size_t{1} << 20, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED)
                     throw std::bad_alloc();
             }
         },
         "the picture needs more than 64 MiB"},
        {goOnForever, "the picture takes longer than 0.3 s"},
    };
    for (const Case& each : cases) {
        const SandboxOutcome outcome =
            Sandbox::run(each.job, {}, {.maxMemory = std::uint64_t{64} << 20, .maxSeconds = 0.3});
        EXPECT_EQ(outcome.error, each.error ? Problem(each.error) : std::nullopt);
        EXPECT_FALSE(outcome.isRefused);
    }
}

TEST(Sandbox, ItsProcessesCanBeSeenToBeProtectedAndGoWithTheirProgram) {
    Sandbox::stop();
    EXPECT_EQ(childNamed("kalim-helper", ::getpid()), 0);
    const pid_t program = ::fork();
    if (program == 0) {
        Sandbox::run(goOnForever, {}, {.maxSeconds = 30});
        ::_exit(0);
    }
    pid_t helper = 0;
    ASSERT_TRUE(becomesTrue([&] { return (helper = childNamed("kalim-helper", program)) != 0; }));
    pid_t decoder = 0;
    ASSERT_TRUE(becomesTrue([&] { return (decoder = childNamed("kalim-decoder", helper)) != 0; }));
    std::string status;
    EXPECT_TRUE(becomesTrue([&] {
        status = statusOf("/proc/" + std::to_string(decoder));
        return status.find("\nSeccomp:\t2\n") != std::string::npos;
    })) << status;
    EXPECT_NE(status.find("\nNoNewPrivs:\t1\n"), std::string::npos);
    ::kill(program, SIGTERM);
    ::waitpid(program, nullptr, 0);
    EXPECT_TRUE(becomesTrue([&] { return !lives(decoder) && !lives(helper); }));
}

TEST(Sandbox, AnotherHelperTakesTheDeadOnesPlace) {
    const Bytes file = makePng({.rows = {77}});
    ASSERT_EQ(decodeSandboxed(file, "photo").error, std::nullopt);
    const pid_t helper = childNamed("kalim-helper", ::getpid());
    ASSERT_NE(helper, 0);
    ::kill(helper, SIGKILL);
    ASSERT_TRUE(becomesTrue([&] { return !lives(helper); }));
    EXPECT_EQ(decodeSandboxed(file, "photo").error, std::nullopt);
    Sandbox::stop();
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(Sandbox, WhatTheSystemForbidsIsDoneInAnotherWay) {
    const Bytes file = makePng({.rows = {77}});
    struct Case {
        std::uint32_t call;
        bool isRefused;
    };
    // The first has the output go through shared memory, the second lets no process be protected.
    for (const Case& each : {Case{__NR_process_vm_readv, false}, Case{__NR_prctl, true}}) {
        const pid_t program = ::fork();
        if (program == 0) {
            Sandbox::stop();
            forbid(each.call);
            const DecodeResult result = decodeSandboxed(file, "photo");
            const bool isAsExpected = !result.error && result.bitmap == decode(file, "").bitmap &&
                                      Sandbox::refusal().has_value() == each.isRefused;
            Sandbox::stop();
            ::_exit(isAsExpected ? 0 : 1);
        }
        int status = -1;
        ::waitpid(program, &status, 0);
        EXPECT_EQ(status, 0) << each.call;
    }
}

TEST(Sandbox, WhereTheSystemRefusesItIsDecodedHere) {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{3, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const DecodeResult result = decodeSandboxed(makePng({.rows = {77}}), "photo");
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(result.error, std::nullopt);
    EXPECT_EQ(result.bitmap.width(), 1);
    EXPECT_EQ(Sandbox::refusal(), "there is no memory to be shared: Too many open files");
}

}  // namespace kalim::codec::test
