#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "kalimkit/codec/Sandbox.h"

namespace kalim::codec {

namespace {

std::optional<std::string> save(const gfx::Bitmap& result, const SavingSource& source,
                                const SavingOptions& options, SandboxOutput& output) {
    SavedPicture saved = savePicture(result, source, options);
    if (saved.error) return saved.error;
    std::uint8_t* const room = output.allocate(saved.bytes.size());
    if (room == nullptr) return "there is no room for the file";
    std::ranges::copy(saved.bytes, room);
    // Zeros follow it.
    const std::size_t length = std::min(saved.encodedAnew.size(), output.facts().size() - 1);
    std::copy_n(saved.encodedAnew.begin(), length, output.facts().begin());
    return std::nullopt;
}

}  // namespace

SavedPicture savePictureSandboxed(const gfx::Bitmap& result, const SavingSource& source,
                                  const SavingOptions& options, const SandboxCaps& caps) {
    SandboxOutcome outcome = Sandbox::runForked(
        [&](SandboxOutput& output) { return save(result, source, options, output); }, caps);
    if (outcome.isRefused) return savePicture(result, source, options);
    SavedPicture saved;
    saved.error = std::move(outcome.error);
    // A process that is deceived may say that it has made a file of nothing.
    if (!saved.error && outcome.size == 0) saved.error = "the picture cannot be written";
    if (saved.error) return saved;
    saved.bytes.assign(outcome.bytes.get(), outcome.bytes.get() + outcome.size);
    const auto* const said = reinterpret_cast<const char*>(outcome.facts.data());
    saved.encodedAnew.assign(said, ::strnlen(said, outcome.facts.size()));
    return saved;
}

}  // namespace kalim::codec
