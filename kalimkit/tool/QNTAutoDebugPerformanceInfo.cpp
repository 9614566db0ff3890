#include "kalimkit/tool/QNTAutoDebugPerformanceInfo.h"

#include <cmath>
#include <utility>

#include "kalimkit/tool/FixedText.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

double inMebibytes(const std::optional<double>& bytes) {
    if (!bytes) return QNTAutoDebugPerformanceInfo::unknownMemory;
    return *bytes * (1.0 / 1024) * (1.0 / 1024);
}

double now() {
    return ui::Environment::current().wallClock();
}

}  // namespace

std::shared_ptr<QNTAutoDebugPerformanceInfo> QNTAutoDebugPerformanceInfo::init() {
    return std::shared_ptr<QNTAutoDebugPerformanceInfo>(new QNTAutoDebugPerformanceInfo);
}

std::shared_ptr<QNTAutoDebugPerformanceInfo> QNTAutoDebugPerformanceInfo::initWithName(
    std::string name) {
    const auto info = init();
    info->_itemName = std::move(name);
    info->_enable = true;
    return info;
}

double QNTAutoDebugPerformanceInfo::usedMemory() {
    return inMebibytes(ui::Environment::current().usedMemory());
}

double QNTAutoDebugPerformanceInfo::availableMemory() {
    return inMebibytes(ui::Environment::current().availableMemory());
}

void QNTAutoDebugPerformanceInfo::start() {
    if (!_enable) return;
    _startDate = now();
    _tmpDate = _startDate;
    _startMemeryUsed = _tmpMemeryUsed = usedMemory();
}

void QNTAutoDebugPerformanceInfo::appendInfo(const std::optional<std::string>& label) {
    if (!_enable || !label) return;
    const double present = now();
    const double memory = usedMemory();
    // Truncated towards zero on purpose, a whole number that is never -0; none without a
    // checkpoint.
    const double elapsed = std::trunc((present - _tmpDate.value_or(present)) * 1000) + 0.0;
    _infos += *label + "(" + fixedText(elapsed, 0) +
              " ms [mem info] total = " + fixedText(memory, 6) +
              ", add = " + fixedText(memory - _tmpMemeryUsed, 6) + ");\n ";
    _tmpMemeryUsed = memory;
    _tmpDate = present;
}

void QNTAutoDebugPerformanceInfo::end() {
    if (!_enable) return;
    start();
    _infos.clear();
}

}  // namespace kalim
