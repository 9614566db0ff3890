#include "bench/RatioReporter.h"

#include <cstdio>

namespace kalim::bench {

namespace {

std::string duration(double nanoseconds) {
    char text[32];
    if (nanoseconds < 1e3) {
        std::snprintf(text, sizeof text, "%.0f ns", nanoseconds);
    } else if (nanoseconds < 1e6) {
        std::snprintf(text, sizeof text, "%.1f us", nanoseconds / 1e3);
    } else {
        std::snprintf(text, sizeof text, "%.1f ms", nanoseconds / 1e6);
    }
    return text;
}

// The goal, and whether the ratio keeps to it.
std::string judged(const std::string& goal, double ratio) {
    double most = 0;
    if (std::sscanf(goal.c_str(), "at most %lf", &most) != 1) return goal;
    return goal + (ratio <= most ? ", met" : ", missed");
}

}  // namespace

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median") continue;
        // A benchmark that takes its own time takes the processor's.
        const bool isOwn = run.run_name.time_type == "manual_time";
        _medians[run.run_name.function_name] =
            (isOwn ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) * 1e9 /
            benchmark::GetTimeUnitMultiplier(run.time_unit);
        const auto bytes = run.counters.find("bytes/step");
        if (bytes != run.counters.end()) _bytesPerStep = bytes->second;
    }
    ConsoleReporter::ReportRuns(runs);
}

std::string RatioReporter::table() const {
    std::string table =
        "| figure | measured | yardstick | ratio | goal |\n| --- | --- | --- | --- | --- |\n";
    for (const Figure& figure : _figures) {
        const auto measured = _medians.find(figure.measured);
        const auto yardstick = _medians.find(figure.yardstick);
        if (measured == _medians.end() || yardstick == _medians.end()) continue;
        char ratio[32];
        const double quotient = measured->second / yardstick->second;
        std::snprintf(ratio, sizeof ratio, "%.2f", quotient);
        table += "| " + figure.title + " | " + duration(measured->second) + " | " +
                 duration(yardstick->second) + " | " + ratio + " | " +
                 judged(figure.goal, quotient) + " |\n";
    }
    return table;
}

}  // namespace kalim::bench
