#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kalimkit/codec/Sandbox.h"

namespace kalim::codec {

// What a program asks of its helper, by one message along with the shared memory: first the page of
// a SandboxReport, then the inputs, each from a page's border, then room for the output.
struct SandboxRequest {
    Sandbox::Job job = nullptr;
    std::uint64_t maxMemory = 0;
    double maxSeconds = 0;
    std::uint64_t inputCount = 0;
    std::array<std::uint64_t, Sandbox::maxInputs> inputSizes{};
    std::uint64_t outputOffset = 0;
    // The output stands in the shared memory, else in that of the process.
    std::uint64_t isOutputShared = 0;
};

// What the helper answers. A process that has Finished waits to be ended, which the program asks
// for by a byte when it has taken the output; in all other cases it is gone.
struct SandboxAnswer {
    enum class End : std::uint32_t { Finished, Exited, Signalled, TookTooLong, NeverBegan };
    End end = End::NeverBegan;
    // The process, the exit status, the signal, or errno.
    int number = 0;
};

// What the process writes, which may be anything.
struct SandboxReport {
    enum class State : std::uint32_t { None, Unprotected, Running, Done, Failed, LacksMemory };
    State state = State::None;
    std::uint32_t messageSize = 0;
    std::uint64_t outputSize = 0;
    // In the process.
    std::uint64_t outputAddress = 0;
    std::array<char, 512> message{};
    std::array<std::uint8_t, SandboxOutput::factBytes> facts{};
};

#if defined(__SANITIZE_ADDRESS__)
// The sanitizers tell of what they find, and look through a pipe whether memory can be read.
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

// On a busy machine a second of the processor may take so many of the clock.
constexpr double sandboxSlowness = 3;

constexpr std::size_t sandboxPage = 4096;
static_assert(sizeof(SandboxReport) <= sandboxPage);

// Memory of this process, null where there is none. In large pages, where the system has them: they
// cost a tenth.
std::uint8_t* mapLargePages(std::size_t size);

constexpr std::uint64_t roundedToPages(std::uint64_t size) {
    return (size + sandboxPage - 1) / sandboxPage * sandboxPage;
}

}  // namespace kalim::codec
