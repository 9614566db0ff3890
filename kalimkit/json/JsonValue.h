#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// A JSON value. Numbers are doubles; objects keep the order of their keys.
class KALIM_API JsonValue {
public:
    using Array = std::vector<JsonValue>;
    using Member = std::pair<std::string, JsonValue>;
    using Object = std::vector<Member>;

    // Makes a null.
    JsonValue() = default;
    // Not explicit, so that a value can be written as nested lists.
    // NOLINTBEGIN(google-explicit-constructor)
    JsonValue(std::same_as<bool> auto value) : _value(value) {}
    template <typename Number>
    requires(std::integral<Number> || std::floating_point<Number>) &&
        (!std::same_as<Number, bool>)JsonValue(Number value) : _value(static_cast<double>(value)) {}
    JsonValue(std::string value) : _value(std::move(value)) {}
    JsonValue(const char* value) : _value(std::string(value)) {}
    JsonValue(Array value) : _value(std::move(value)) {}
    JsonValue(Object value) : _value(std::move(value)) {}
    // NOLINTEND(google-explicit-constructor)

    // Not those of the variant: where the memory ends while it copies, libstdc++'s destroys what it
    // has not made.
    JsonValue(const JsonValue& other);
    JsonValue(JsonValue&& other) noexcept = default;
    JsonValue& operator=(const JsonValue& other) { return *this = JsonValue(other); }
    JsonValue& operator=(JsonValue&& other) noexcept = default;
    ~JsonValue() = default;

    bool operator==(const JsonValue&) const = default;

    // ---- reading; null where the value is of another kind
    bool isNull() const { return std::holds_alternative<std::monostate>(_value); }
    const bool* boolean() const { return std::get_if<bool>(&_value); }
    const double* number() const { return std::get_if<double>(&_value); }
    const std::string* string() const { return std::get_if<std::string>(&_value); }
    const Array* array() const { return std::get_if<Array>(&_value); }
    const Object* object() const { return std::get_if<Object>(&_value); }
    Array* array() { return std::get_if<Array>(&_value); }
    Object* object() { return std::get_if<Object>(&_value); }
    // A member of an object; null when this is no object or has no such key.
    const JsonValue* find(std::string_view key) const;

private:
    std::variant<std::monostate, bool, double, std::string, Array, Object> _value;
};

}  // namespace kalim
