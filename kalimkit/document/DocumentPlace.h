#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/json/JsonValue.h"

namespace kalim {

// A value as a message quotes it, cut short where it is long.
std::string quoted(const JsonValue& value);

// An object of a document while it is read: its members by key, and where it stands, so that what
// is wrong can be named. The first problem stays; what is read after it does not matter.
class DocumentPlace {
public:
    // `path` names the object, such as "tools[3]"; empty for the document itself. The value must
    // be there as long as the place is.
    DocumentPlace(const JsonValue& value, std::string path, std::optional<std::string>& problem);

    // "tools[3].startPoint" for its member.
    std::string pathOf(std::string_view key) const;
    // Null where it is missing.
    const JsonValue* find(std::string_view key) const { return _value->find(key); }
    // A missing one is a problem, and reads as null.
    const JsonValue& need(std::string_view key);
    DocumentPlace object(std::string_view key) { return {need(key), pathOf(key), _problem}; }

    // ---- members of a kind; where they are none, that is a problem
    double number(std::string_view key, double least, double most);
    std::int64_t whole(std::string_view key, std::int64_t least, std::int64_t most);
    bool flag(std::string_view key);
    std::string text(std::string_view key);

    // `what` must be so, not as it is.
    void fail(std::string_view key, std::string_view mustBe);
    void complain(std::string problem);
    bool hasFailed() const { return _problem.has_value(); }
    // The members that are none of these, as they stand.
    JsonValue::Object others(std::initializer_list<std::string_view> known) const;

private:
    const JsonValue* _value;
    std::string _path;
    std::optional<std::string>& _problem;
};

}  // namespace kalim
