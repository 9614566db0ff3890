#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace kalim::bench {

// One line of the table: a measurement beside its yardstick of the same run.
struct Figure {
    std::string title;
    // Names of benchmarks.
    std::string measured;
    std::string yardstick;
    // "at most" and what the ratio should not exceed; empty without a goal.
    std::string goal;
};

// Prints each benchmark's median as it comes, and at the end the figures as a Markdown table.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    explicit RatioReporter(std::vector<Figure> figures)
        : ConsoleReporter(OO_None), _figures(std::move(figures)) {}

    void ReportRuns(const std::vector<Run>& runs) override;
    // The table; figures whose benchmarks did not run are left out.
    std::string table() const;
    // What one recorded undo step keeps allocated; 0 when that did not run.
    double bytesPerStep() const { return _bytesPerStep; }

private:
    std::vector<Figure> _figures;
    // They are the processor's nanoseconds by name: other programs cost real time, too.
    std::map<std::string, double> _medians;
    double _bytesPerStep = 0;
};

}  // namespace kalim::bench
