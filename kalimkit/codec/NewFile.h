#pragma once

#include <csignal>
#include <filesystem>
#include <optional>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// A file that is written out of sight and appears under its name at once, complete. Where the file
// system can, it has no name at all until then, so that whatever ends the process leaves nothing
// behind; elsewhere it lies beside its target under a name that is known, locked while its writer
// lives, and signals that would end the process wait until it is gone. Errors are those of errno, 0
// is none.
class NewFile {
public:
    // For a target that is no link; the file will be in its folder.
    explicit NewFile(std::filesystem::path target);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Why it could not be made.
    int error() const { return _error; }
    int descriptor() const { return _descriptor; }
    // Writes all of it to the disk.
    int fill(ByteSpan bytes);
    // Each gives it its name, once. The first in the place of whatever has the name; the second
    // answers EEXIST where something has.
    int replaceTarget();
    int becomeTarget();

    // Removes what killed writers have left in a folder.
    static void removeLeftovers(const std::filesystem::path& folder);

private:
    // Signals that end the process wait while it lives.
    class SignalPause {
    public:
        SignalPause();
        ~SignalPause();
        SignalPause(const SignalPause&) = delete;
        SignalPause& operator=(const SignalPause&) = delete;

    private:
        sigset_t _before{};
    };

    bool openUnnamed();
    bool openNamed();
    int giveName(const std::filesystem::path& name) const;
    void dropName();

    std::filesystem::path _target;
    // Empty while it has none.
    std::filesystem::path _temporary;
    std::optional<SignalPause> _pause;
    int _descriptor = -1;
    int _error = 0;
};

}  // namespace kalim::codec
