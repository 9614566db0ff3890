#include "tests/scenarios/JsonMatch.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kalim::test {

namespace {

using Json = nlohmann::json;

bool areEqualNumbers(double expected, double actual) {
    constexpr double tolerance = 1e-6;
    return std::abs(expected - actual) <=
           tolerance * std::max({1.0, std::abs(expected), std::abs(actual)});
}

std::string difference(const Json& expected, const Json& actual, const std::string& place) {
    const std::string both = place + ": expected " + expected.dump() + ", got " + actual.dump();
    if (expected.is_number() && actual.is_number()) {
        return areEqualNumbers(expected, actual) ? "" : both;
    }
    if (expected.is_object() && actual.is_object()) {
        for (const auto& [key, value] : expected.items()) {
            const std::string where = place + "." + key;
            if (!actual.contains(key)) return where + ": is not there";
            if (const std::string found = difference(value, actual[key], where); !found.empty()) {
                return found;
            }
        }
        return "";
    }
    if (expected.is_array() && actual.is_array() && expected.size() == actual.size()) {
        for (std::size_t index = 0; index < expected.size(); ++index) {
            const std::string where = place + "[" + std::to_string(index) + "]";
            const std::string found = difference(expected[index], actual[index], where);
            if (!found.empty()) return found;
        }
        return "";
    }
    return expected == actual ? "" : both;
}

}  // namespace

std::string differenceOfJson(const std::string& expected, const std::string& actual) {
    const Json wanted = Json::parse(expected, nullptr, false);
    const Json printed = Json::parse(actual, nullptr, false);
    if (wanted.is_discarded()) return "the expected line is no JSON: " + expected;
    if (printed.is_discarded()) return "the printed line is no JSON: " + actual;
    return difference(wanted, printed, "print");
}

}  // namespace kalim::test
