#include "kalimkit/ui/environment/WorkStore.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace kalim::ui {

WorkStore::~WorkStore() = default;

void WorkStore::setOnProblem(OnProblem onProblem) {
    const bool isLate = !_problem.empty() && !_onProblem;
    _onProblem = std::move(onProblem);
    if (isLate && _onProblem) _onProblem(_problem);
}

void WorkStore::report(const std::string& sentence) {
    if (!_problem.empty()) return;
    _problem = sentence;
    // Copied: it may set another one.
    if (const OnProblem onProblem = _onProblem) onProblem(_problem);
}

// The calendar is worked out in whole days of an era of 400 years that begins in March, as in
// Howard Hinnant's "chrono-Compatible Low-Level Date Algorithms".
std::string utcTime(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::floor(seconds));
    const std::int64_t second = ((whole % 86400) + 86400) % 86400;
    const std::int64_t day = (whole - second) / 86400 + 719468;
    const std::int64_t era = (day >= 0 ? day : day - 146096) / 146097;
    const std::int64_t dayOfEra = day - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const std::int64_t dayOfMonth = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    const std::int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ",
                  static_cast<int>(year), static_cast<int>(month), static_cast<int>(dayOfMonth),
                  static_cast<int>(second / 3600), static_cast<int>(second / 60 % 60),
                  static_cast<int>(second % 60));
    return text.data();
}

}  // namespace kalim::ui
