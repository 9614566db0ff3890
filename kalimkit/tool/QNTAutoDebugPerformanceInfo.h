#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// A stopwatch for an activity: time and memory between named checkpoints, collected as text. While
// it is not enabled, nothing it is asked to do happens. Times are the environment's wall clock,
// memory is in MiB from the environment's figures.
class KALIM_API QNTAutoDebugPerformanceInfo {
public:
    // What a memory figure reads when the host cannot tell it.
    static constexpr double unknownMemory = 9223372036854775808.0;

    // Measures nothing until it is enabled.
    static std::shared_ptr<QNTAutoDebugPerformanceInfo> init();
    // Is enabled from the beginning.
    static std::shared_ptr<QNTAutoDebugPerformanceInfo> initWithName(std::string name);

    // Tells the process's resident memory, and the machine's free memory.
    static double usedMemory();
    static double availableMemory();

    void start();
    // Adds a line: what was done since the last checkpoint, how long it took and what it cost. A
    // line feed and a space end it. No label, no line.
    void appendInfo(const std::optional<std::string>& label);
    // Starts over; the lines collected so far go nowhere, which is deliberate.
    void end();

    const std::string& itemName() const { return _itemName; }
    void setItemName(std::string name) { _itemName = std::move(name); }
    bool enable() const { return _enable; }
    void setEnable(bool enable) { _enable = enable; }
    // The pattern of time stamps: week-based year, 12-hour clock, milliseconds.
    const std::string& formatter() const { return _formatter; }
    const std::string& infos() const { return _infos; }
    // Seconds since 1970 at start, or at the last end; 0 before. The misspelt ones are MiB.
    double startDate() const { return _startDate; }
    double tmpDate() const { return _tmpDate.value_or(0); }
    double startMemeryUsed() const { return _startMemeryUsed; }
    double tmpMemeryUsed() const { return _tmpMemeryUsed; }

private:
    QNTAutoDebugPerformanceInfo() = default;

    std::string _itemName;
    bool _enable = false;
    std::string _formatter = "YYYY-MM-dd hh:mm:ss:SSS";
    double _startDate = 0;
    std::optional<double> _tmpDate;
    double _startMemeryUsed = 0;
    double _tmpMemeryUsed = 0;
    std::string _infos;
};

}  // namespace kalim
