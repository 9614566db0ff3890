#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// What one language says for the texts of the system, which are found by the Chinese ones.
//
//     {"@direction": "ltr", "关闭": "Close", "移动 {count} 点": {"one": "Move by {count} point",
//                                                               "other": "Move by {count} points"}}
//
// What stands in braces is put in by its name. A text that goes with a number has the forms that
// the language's plurals have, "other" among them. "@direction" is "ltr", as without it, or "rtl"
// for a language that is written from right to left.
class KALIM_API TextCatalogue {
public:
    // Takes the texts of such a file in addition to, or in the place of, those there are. Answers
    // with what is wrong, and nothing changes then: no such JSON, a plural that is none or has no
    // "other", or a text that does not put in what the key does.
    std::optional<std::string> add(std::string_view json);

    // The form of a category; "other" where it has none of it. Null for a key without a text.
    const std::string* find(const std::string& key, const std::string& category = "other") const;

private:
    using Forms = std::map<std::string, std::string>;
    std::map<std::string, Forms> _texts;
};

}  // namespace kalim
