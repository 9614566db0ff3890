#include "kalimkit/json/JsonText.h"

#include <cmath>
#include <utility>
#include <vector>

// Neither streams nor files, and nothing that throws: the browser's library has none of them.
#define JSON_NO_IO 1
#define JSON_NOEXCEPTION 1
#include <nlohmann/json.hpp>

namespace kalim {

namespace {

using Json = nlohmann::ordered_json;

constexpr double largestExactWhole = 9007199254740992.0;
// Bytes; the parser's reasons quote what it has read.
constexpr std::size_t longestReason = 200;

// Builds a JsonValue from the parser's events. Each returns whether to go on.
class ValueBuilder {
public:
    explicit ValueBuilder(const JsonLimits& limits) : _limits(limits) {}

    ParsedJson take() { return {std::move(_root), std::move(_error)}; }

    bool null() { return put({}); }
    bool boolean(bool value) { return put(value); }
    bool number_integer(std::int64_t value) { return put(value); }
    bool number_unsigned(std::uint64_t value) { return put(value); }
    bool number_float(double value, const std::string&) { return put(value); }
    bool string(std::string& value) { return put(std::move(value)); }
    bool binary(Json::binary_t&) { return fail("binary data"); }

    bool start_object(std::size_t) { return open(JsonValue::Object{}); }
    bool end_object() { return close(); }
    bool start_array(std::size_t) { return open(JsonValue::Array{}); }
    bool end_array() { return close(); }
    bool key(std::string& name) {
        // Looking for each among thousands would take for ever.
        if (_open.back()->object()->size() >= _limits.keys) {
            return fail("an object has more than " + std::to_string(_limits.keys) + " keys");
        }
        if (_open.back()->find(name)) {
            return fail("the key " + cutQuote(dumpJson(name)) + " is there twice");
        }
        _open.back()->object()->emplace_back(std::move(name), JsonValue());
        return true;
    }

    template <typename Exception>
    bool parse_error(std::size_t position, const std::string&, const Exception& exception) {
        // "[json.exception.x] parse error at line 1, column 5: syntax error ...": the parser counts
        // the lines of this text alone, so only what follows its place is of use.
        const std::string text = exception.what();
        const std::size_t place = text.find(": ");
        const std::size_t reason = place != std::string::npos ? place : text.find("] ");
        return fail("broken JSON at byte " + std::to_string(position) + ": " +
                    text.substr(reason + 2, longestReason));
    }

private:
    bool fail(std::string error) {
        _error = std::move(error);
        return false;
    }

    // Where the next value goes: the last key of the innermost object, or behind the last element
    // of the innermost array.
    JsonValue& nextPlace() {
        if (_open.empty()) return _root;
        if (JsonValue::Array* elements = _open.back()->array()) return elements->emplace_back();
        return _open.back()->object()->back().second;
    }

    // Whether one more value would be too many elements for an array of the outermost object.
    bool isFull() {
        constexpr std::size_t depth = 2;
        if (_open.size() != depth || !_open.back()->array()) return false;
        return _open.back()->array()->size() >= _limits.elements;
    }

    bool failFull() {
        const std::string name = _root.object() ? _root.object()->back().first : std::string();
        return fail(name + ": more than " + std::to_string(_limits.elements) + " elements");
    }

    bool put(JsonValue value) {
        if (isFull()) return failFull();
        nextPlace() = std::move(value);
        return true;
    }

    bool open(JsonValue value) {
        if (isFull()) return failFull();
        if (_open.size() == _limits.depth) return fail("too deeply nested JSON");
        JsonValue& place = nextPlace();
        place = std::move(value);
        _open.push_back(&place);
        return true;
    }

    bool close() {
        _open.pop_back();
        return true;
    }

    JsonLimits _limits;
    JsonValue _root;
    std::optional<std::string> _error;
    // From the root inwards. An open value is the last of its parent, which therefore does not grow
    // and move it until it is closed.
    std::vector<JsonValue*> _open;
};

// Of what has no parts.
std::string dumpScalar(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string dumpNumber(double number) {
    const bool isWhole = std::trunc(number) == number;
    if (isWhole && std::abs(number) <= largestExactWhole)
        return dumpScalar(static_cast<std::int64_t>(number));
    return dumpScalar(number);
}

// The library's own lists are not made of it: they ask for memory at their end, where there is
// nobody to tell that there is none.
void append(std::string& text, const JsonValue& value) {
    const char* separator = "";
    if (const JsonValue::Array* elements = value.array()) {
        text += '[';
        for (const JsonValue& element : *elements) {
            text += std::exchange(separator, ",");
            append(text, element);
        }
        text += ']';
    } else if (const JsonValue::Object* members = value.object()) {
        text += '{';
        for (const auto& [key, member] : *members) {
            text += std::exchange(separator, ",");
            text += dumpScalar(key) + ':';
            append(text, member);
        }
        text += '}';
    } else if (const std::string* letters = value.string()) {
        text += dumpScalar(*letters);
    } else if (const double* number = value.number()) {
        text += dumpNumber(*number);
    } else {
        const bool* const flag = value.boolean();
        text += flag == nullptr ? "null" : *flag ? "true" : "false";
    }
}

}  // namespace

ParsedJson parseJson(std::string_view text, const JsonLimits& limits) {
    ValueBuilder builder(limits);
    Json::sax_parse(text.begin(), text.end(), &builder);
    return builder.take();
}

std::string dumpJson(const JsonValue& value) {
    std::string text;
    append(text, value);
    return text;
}

std::string cutQuote(const std::string& dump) {
    if (dump.size() <= longestQuote) return dump;
    std::size_t end = longestQuote;
    // The cut does not fall within a character.
    while (end > 0 && (static_cast<unsigned char>(dump[end]) & 0xC0U) == 0x80U)
        --end;
    return dump.substr(0, end) + "...";
}

}  // namespace kalim
