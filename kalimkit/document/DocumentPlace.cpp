#include "kalimkit/document/DocumentPlace.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

const JsonValue nothing;

std::string shown(double number) {
    return dumpJson(number);
}

}  // namespace

std::string quoted(const JsonValue& value) {
    return cutQuote(dumpJson(value));
}

DocumentPlace::DocumentPlace(const JsonValue& value, std::string path,
                             std::optional<std::string>& problem)
    : _value(&value), _path(std::move(path)), _problem(problem) {
    if (value.object()) return;
    complain((_path.empty() ? "the document" : _path) + " must be an object, not " + quoted(value));
    _value = &nothing;
}

std::string DocumentPlace::pathOf(std::string_view key) const {
    return _path.empty() ? std::string(key) : _path + "." + std::string(key);
}

const JsonValue& DocumentPlace::need(std::string_view key) {
    const JsonValue* const member = find(key);
    if (member) return *member;
    complain(pathOf(key) + " is missing");
    return nothing;
}

double DocumentPlace::number(std::string_view key, double least, double most) {
    const JsonValue& value = need(key);
    const double* const number = value.number();
    if (number && *number >= least && *number <= most) return *number;
    fail(key, "a number from " + shown(least) + " to " + shown(most));
    return least;
}

std::int64_t DocumentPlace::whole(std::string_view key, std::int64_t least, std::int64_t most) {
    const JsonValue& value = need(key);
    const double* const number = value.number();
    if (number && std::trunc(*number) == *number && *number >= static_cast<double>(least) &&
        *number <= static_cast<double>(most)) {
        return static_cast<std::int64_t>(*number);
    }
    fail(key, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return least;
}

bool DocumentPlace::flag(std::string_view key) {
    const bool* const flag = need(key).boolean();
    if (!flag) fail(key, "true or false");
    return flag && *flag;
}

std::string DocumentPlace::text(std::string_view key) {
    const std::string* const text = need(key).string();
    if (!text) fail(key, "a text");
    return text ? *text : std::string();
}

void DocumentPlace::fail(std::string_view key, std::string_view mustBe) {
    if (_problem) return;
    const JsonValue* const value = find(key);
    complain(pathOf(key) + " must be " + std::string(mustBe) + ", not " +
             (value ? quoted(*value) : "missing"));
}

void DocumentPlace::complain(std::string problem) {
    if (!_problem) _problem = std::move(problem);
}

JsonValue::Object DocumentPlace::others(std::initializer_list<std::string_view> known) const {
    JsonValue::Object rest;
    const JsonValue::Object* const members = _value->object();
    if (!members) return rest;
    for (const JsonValue::Member& member : *members) {
        if (std::ranges::find(known, member.first) == known.end()) rest.push_back(member);
    }
    return rest;
}

}  // namespace kalim
