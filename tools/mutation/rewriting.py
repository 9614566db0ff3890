"""Writes sources in which every mutant is there and the environment says which one is alive."""

from points import NUMBER

# In front of every mutated file; the errors of the compiler name the lines of the original.
PREFIX = (
    "extern int kalimMutantAlive; bool kalimMutantReached(int); "
    "static inline bool kalimMutant(int number) { return kalimMutantAlive == number || "
    "(kalimMutantAlive == -2 && kalimMutantReached(number)); }\n#line 1\n")

# What the mutated files need besides. It takes its number before any constant of the house is made. A
# trace tells what is reached in which test, and is written at once, so that a program that is killed
# leaves one, too.
RUNTIME = r"""
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {
const char* traceFile() { return std::getenv("KALIM_MUTANT_TRACE"); }
bool reached[1 << 16];
}

int kalimMutantAlive = -1;

__attribute__((constructor(101))) static void choose() {
    const char* number = std::getenv("KALIM_MUTANT");
    kalimMutantAlive = traceFile() ? -2 : number ? std::atoi(number) : -1;
}

void kalimMutantForget() { std::memset(reached, 0, sizeof reached); }

bool kalimMutantReached(int number) {
    if (reached[number]) return false;
    reached[number] = true;
    const char* test = std::getenv("KALIM_MUTANT_TEST");
    char line[512];
    const int length = std::snprintf(line, sizeof line, "%d %.480s\n", number, test ? test : "*");
    const int file = open(traceFile(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (file >= 0 && write(file, line, length) == length) close(file);
    return false;
}
"""

# What every test program needs besides: it says which test runs, to the programs that tests start, too.
LISTENER = r"""
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

void kalimMutantForget();

namespace {
class TestNames : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        setenv("KALIM_MUTANT_TEST", (std::string(test.test_suite_name()) + "." + test.name()).c_str(), 1);
        kalimMutantForget();
    }
    void OnTestEnd(const testing::TestInfo&) override { unsetenv("KALIM_MUTANT_TEST"); }
};
const bool isListening = std::getenv("KALIM_MUTANT_TRACE") &&
                         (testing::UnitTest::GetInstance()->listeners().Append(new TestNames), true);
}
"""


def rewritten(source, points):
    """The source with the points' mutants in it."""
    edits, relaxed = [], set()
    for point in points:
        for edit in point.edits:
            span = (edit.start, edit.end)
            if edit.pieces == ["const"]:
                if span in relaxed:
                    continue
                relaxed.add(span)
            edits.append((edit, point))
    # What holds another comes first; a whole condition holds the operator of the same range.
    order = {"statement": 0, "condition": 1, "operator": 2, "constant": 3}
    edits.sort(key=lambda each: (each[0].start, -each[0].end, order[each[1].kind]))
    return PREFIX + _render(source, 0, len(source), edits)


def _render(source, start, end, edits):
    text, place, index = [], start, 0
    while index < len(edits):
        edit, point = edits[index]
        behind = index + 1
        while behind < len(edits) and edits[behind][0].start < edit.end:
            behind += 1
        text.append(source[place:edit.start])
        text.append(_render_edit(source, edit, point, edits[index + 1:behind]))
        place, index = edit.end, behind
    text.append(source[place:end])
    return "".join(text)


def _render_edit(source, edit, point, inner):
    """The pieces between "flat" and "unflat" are a second copy; its lines are not counted."""
    text, is_flat = [], False
    for piece in edit.pieces:
        if piece in ("flat", "unflat"):
            is_flat = piece == "flat"
        elif isinstance(piece, tuple):
            within = [each for each in inner if piece[0] <= each[0].start and each[0].end <= piece[1]]
            rendered = _render(source, *piece, within)
            text.append(rendered.replace("\n", " ") if is_flat else rendered)
        else:
            text.append(piece.replace(NUMBER, str(point.number)))
    return "".join(text)


def points_at(line, source, points):
    """The points that an error in this line may come from, the narrowest first."""
    def lines(edit):
        return source.count("\n", 0, edit.start) + 1, source.count("\n", 0, edit.end) + 1

    hit = []
    for point in points:
        spans = [lines(edit) for edit in point.edits]
        around = [last - first for first, last in spans if first <= line <= last]
        if around:
            hit.append((min(around), point))
    if not hit:
        return []
    narrowest = min(size for size, _ in hit)
    return [point for size, point in hit if size <= max(narrowest, 2)]
