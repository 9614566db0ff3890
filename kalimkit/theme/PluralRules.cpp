#include "kalimkit/theme/PluralRules.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <vector>

#include "kalimkit/json/JsonText.h"
#include "kalimkit/theme/GivenTexts.h"

namespace kalim {

namespace {

// Reads a rule from left to right. A rule is `and`s between `or`s of relations such as
// "i % 100 != 12..14,20".
class RuleReader {
public:
    RuleReader(std::string_view rule, std::uint64_t count) : _rest(rule), _count(count) {}

    bool meetsAll() {
        bool isMet = false;
        do {
            isMet = readConjunction() || isMet;
        } while (take("or"));
        return isMet && !_isBroken && _rest.empty();
    }

private:
    bool readConjunction() {
        bool isMet = true;
        do {
            isMet = readRelation() && isMet;
        } while (take("and"));
        return isMet;
    }

    bool readRelation() {
        std::uint64_t operand = readOperand();
        if (take("%")) {
            const std::uint64_t divisor = readNumber();
            if (divisor == 0) return fail();
            operand %= divisor;
        }
        const bool isEqual = take("=");
        if (!isEqual && !take("!=")) return fail();
        return readRanges(operand) == isEqual;
    }

    // A count is whole: it has no visible fraction and no exponent.
    std::uint64_t readOperand() {
        for (const std::string_view whole : {"n", "i"})
            if (take(whole)) return _count;
        for (const std::string_view fraction : {"v", "w", "f", "t", "e", "c"})
            if (take(fraction)) return 0;
        return fail();
    }

    bool readRanges(std::uint64_t operand) {
        bool isInside = false;
        do {
            const std::uint64_t first = readNumber();
            const std::uint64_t last = take("..") ? readNumber() : first;
            isInside = isInside || (first <= operand && operand <= last);
        } while (take(","));
        return isInside;
    }

    std::uint64_t readNumber() {
        std::uint64_t number = 0;
        const char* const begin = _rest.data();
        const auto [end, problem] = std::from_chars(begin, begin + _rest.size(), number);
        if (problem != std::errc()) return fail();
        advance(static_cast<std::size_t>(end - begin));
        return number;
    }

    bool take(std::string_view token) {
        if (!_rest.starts_with(token)) return false;
        advance(token.size());
        return true;
    }

    void advance(std::size_t length) {
        _rest.remove_prefix(length);
        while (_rest.starts_with(' '))
            _rest.remove_prefix(1);
    }

    bool fail() {
        _isBroken = true;
        return false;
    }

    std::string_view _rest;
    std::uint64_t _count;
    bool _isBroken = false;
};

const JsonValue& givenRules() {
    static const JsonValue rules = parseJson(givenPluralRules(), wideLimits).value;
    return rules;
}

// "pt-PT" has rules of its own, and "pt-BR" those of "pt".
const JsonValue* rulesOf(std::string_view language) {
    for (;;) {
        if (const JsonValue* const rules = givenRules().find(language)) return rules;
        const std::size_t end = language.rfind('-');
        if (end == std::string_view::npos) return nullptr;
        language = language.substr(0, end);
    }
}

}  // namespace

bool meetsPluralRule(std::string_view rule, std::int64_t count) {
    const auto size = static_cast<std::uint64_t>(count);
    return RuleReader(rule, count < 0 ? -size : size).meetsAll();
}

std::string pluralCategory(std::string_view language, std::int64_t count) {
    const JsonValue* const rules = rulesOf(language);
    if (rules && rules->object()) {
        for (const auto& [category, rule] : *rules->object()) {
            if (rule.string() && meetsPluralRule(*rule.string(), count)) return category;
        }
    }
    return "other";
}

}  // namespace kalim
