#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// What a job may take, its output included.
struct SandboxCaps {
    std::uint64_t maxMemory = DecodeLimits().maxMemory;
    // Of the processor; of the clock it may be three times that.
    double maxSeconds = DecodeLimits().maxSeconds;
};

// What a job leaves behind.
class KALIM_API SandboxOutput {
public:
    static constexpr std::size_t factBytes = 2048;

    virtual ~SandboxOutput();
    // Room for the result, as large as the process that asked for it will see it; null beyond the
    // caps. To be called once; the room starts zeroed, at a page's border.
    virtual std::uint8_t* allocate(std::size_t size) = 0;
    // What there is to tell besides; zeroed at first.
    virtual std::span<std::uint8_t> facts() = 0;
};

struct SandboxOutcome {
    // Nothing where the job has done its work, else one sentence without a name in front, such as
    // "takes longer than 10 s".
    std::optional<std::string> error;
    // The system lets no such process be: the job has not run, and `error` says why.
    bool isRefused = false;
    // What the job has allocated, a copy. A job that is deceived may have put anything there, and
    // into the facts.
    std::shared_ptr<std::uint8_t[]> bytes;
    std::size_t size = 0;
    std::array<std::uint8_t, SandboxOutput::factBytes> facts{};
};

// Runs jobs on files from strangers in processes that can harm nobody: each has memory, its inputs
// and its output, and neither files nor network nor other processes; one that is deceived, crashes
// or takes too much is an error. They are forked by a helper, a process that the first call forks:
// with start() as the first thing in main() they know nothing else of the program, and no thread,
// window or open file of it. Safe to be called from several threads, which take turns. Linux only;
// the helper ends with its program.
class KALIM_API Sandbox {
public:
    // A plain function that was in the program when the helper started; in it nothing may be asked
    // of the system but memory. Answers with nothing or why it has failed, in a sentence of the
    // same kind.
    using Job = std::optional<std::string> (*)(std::span<const ByteSpan> inputs,
                                               SandboxOutput& output);
    static constexpr std::size_t maxInputs = 8;

    // Forks the helper, unless there is one. A process that was forked from the program gets its
    // own.
    static void start();
    // Ends it.
    static void stop();
    static SandboxOutcome run(Job job, std::span<const ByteSpan> inputs,
                              const SandboxCaps& caps = {});
    // The same in a process that is forked from this one, so that the work has whatever it refers
    // to and nothing is copied; it also has whatever else this process knows, but no way to tell
    // of it except by its output. Other threads do not go on in it: the work may wait for none.
    static SandboxOutcome runForked(
        const std::function<std::optional<std::string>(SandboxOutput& output)>& work,
        const SandboxCaps& caps = {});
    // Why the last run was refused; nothing where none was.
    static std::optional<std::string> refusal();
};

// As decode(), in a process of its own, and in this one where the system refuses that.
KALIM_API DecodeResult decodeSandboxed(ByteSpan bytes, const std::string& name,
                                       const DecodeLimits& limits = {});
// As savePicture(), which reads the source's file once more, in the same way.
KALIM_API SavedPicture savePictureSandboxed(const gfx::Bitmap& result, const SavingSource& source,
                                            const SavingOptions& options,
                                            const SandboxCaps& caps = {});

}  // namespace kalim::codec
