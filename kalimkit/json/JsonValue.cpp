#include "kalimkit/json/JsonValue.h"

namespace kalim {

const JsonValue* JsonValue::find(std::string_view key) const {
    if (const Object* members = object()) {
        for (const auto& [name, value] : *members) {
            if (name == key) return &value;
        }
    }
    return nullptr;
}

}  // namespace kalim
