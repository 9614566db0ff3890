#include "kalimkit/json/JsonValue.h"

#include <utility>
#include <variant>

namespace kalim {

JsonValue::JsonValue(const JsonValue& other) {
    std::visit(
        [this](const auto& value) {
            auto copy = value;
            _value = std::move(copy);
        },
        other._value);
}

const JsonValue* JsonValue::find(std::string_view key) const {
    if (const Object* members = object()) {
        for (const auto& [name, value] : *members) {
            if (name == key) return &value;
        }
    }
    return nullptr;
}

}  // namespace kalim
