#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// What a work begins with.
struct WorkStart {
    // What the opened file is called, for people to read; no path.
    std::string picture;
    // Of the opened file's bytes, 64 small hexadecimal digits: what the work is found by.
    std::string sha256;
    // The opened file, a picture's or a document's, byte for byte.
    std::vector<std::uint8_t> bytes;
    // What whoever records has to know besides the steps; the store does not read it.
    std::string setUp;
};

// What is told of a work in a list.
struct WorkSummary {
    std::string id;
    std::string picture;
    std::string sha256;
    // When it began, as the store's clock went: "2026-03-01T08:15:30Z".
    std::string began;
    std::size_t steps = 0;
    // An editor that runs is at it, this one or another: nobody else opens or forgets it.
    bool isHeld = false;

    bool operator==(const WorkSummary&) const = default;
};

// Holds a whole work.
struct Work {
    WorkSummary summary;
    std::vector<std::uint8_t> bytes;
    std::string setUp;
    // As they were recorded, the oldest first.
    std::vector<std::string> steps;
};

// Keeps the works that were neither sent nor discarded, so that they survive the end of the
// process. It knows texts and bytes alone. Whoever begins or opens a work holds it until it is
// ended or the store is gone; a crash lets go of it as well.
//
// Nothing here fails: what cannot be kept is not. The handler for problems hears of it once, and
// the store then takes no new works or steps, so that nothing with a gap is ever left behind; it
// still ends and forgets. Answers come at once or later from the main queue, each exactly once as
// long as the store lives.
class KALIM_API WorkStore {
public:
    using Listed = std::function<void(std::vector<WorkSummary> works)>;
    using Opened = std::function<void(std::optional<Work> work)>;

    virtual ~WorkStore();

    // ---- a work, in the order of its life
    // Begins one; the id is known at once and never given again. Empty where it is not kept.
    virtual std::string begin(const WorkStart& start) = 0;
    // Appends a step to a work that this store holds. A store that can have it written when this
    // returns does so; others write in the order of the calls.
    virtual void record(const std::string& id, const std::string& step) = 0;
    // Was sent or discarded: removes all of a held work, so that nothing of it stays behind.
    virtual void end(const std::string& id) = 0;

    // ---- works of before
    // All of them, the oldest first.
    virtual void list(const Listed& listed) = 0;
    // Opens one to go on with, and holds it; later steps are appended to it. Nothing where there is
    // none of this id, or another editor holds it.
    virtual void open(const std::string& id, const Opened& opened) = 0;
    // Removes one that nobody holds as end() does; others stay as they are.
    virtual void forget(const std::string& id) = 0;

    // ---- problems
    // Called once at most, with a sentence for the user; at once where there was a problem before.
    using OnProblem = std::function<void(const std::string& sentence)>;
    void setOnProblem(OnProblem onProblem);
    // The sentence; empty as long as all goes well.
    const std::string& problem() const { return _problem; }

protected:
    // Later ones are not told.
    void report(const std::string& sentence);

private:
    OnProblem _onProblem;
    std::string _problem;
};

// Writes seconds since 1970 as "2026-03-01T08:15:30Z".
KALIM_API std::string utcTime(double seconds);

}  // namespace kalim::ui
