#include "kalimkit/theme/TextCatalogue.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "kalimkit/json/JsonText.h"
#include "kalimkit/theme/GivenTexts.h"

namespace kalim {

namespace {

constexpr std::array<std::string_view, 6> categories{"zero", "one", "two", "few", "many", "other"};
constexpr std::string_view directionKey = "@direction";

// The names in braces.
std::set<std::string> argumentsOf(std::string_view text) {
    std::set<std::string> names;
    for (std::size_t begin = text.find('{'); begin != std::string_view::npos;
         begin = text.find('{', begin + 1)) {
        const std::size_t end = text.find('}', begin);
        if (end == std::string_view::npos) break;
        names.emplace(text.substr(begin + 1, end - begin - 1));
    }
    return names;
}

// A form for one or two things may do without the number.
std::optional<std::string> checkArguments(const std::string& key, const std::string& category,
                                          const std::string& text) {
    const std::set<std::string> wanted = argumentsOf(key);
    const std::set<std::string> given = argumentsOf(text);
    for (const std::string& name : given) {
        if (!wanted.contains(name)) return "puts in {" + name + "}, which there is not";
    }
    for (const std::string& name : wanted) {
        const bool isNeeded = name != "count" || category == "other";
        if (isNeeded && !given.contains(name)) return "leaves out {" + name + "}";
    }
    return std::nullopt;
}

std::optional<std::string> readForms(const std::string& key, const JsonValue& value,
                                     std::map<std::string, std::string>& forms) {
    JsonValue::Object members{{"other", value}};
    if (value.object()) members = *value.object();
    for (const auto& [category, text] : members) {
        if (!std::ranges::count(categories, category))
            return "\"" + category + "\" is no category of plurals";
        if (!text.string()) return std::string("is no text");
        if (auto problem = checkArguments(key, category, *text.string())) return problem;
        forms[category] = *text.string();
    }
    if (!forms.contains("other")) return std::string("lacks \"other\"");
    const std::string& direction = forms.at("other");
    if (key == directionKey && direction != "ltr" && direction != "rtl")
        return std::string("must be \"ltr\" or \"rtl\"");
    return std::nullopt;
}

}  // namespace

std::optional<std::string> TextCatalogue::add(std::string_view json) {
    const ParsedJson parsed = parseJson(json, wideLimits);
    if (parsed.error) return parsed.error;
    if (!parsed.value.object()) return "is no JSON object";
    auto texts = _texts;
    for (const auto& [key, value] : *parsed.value.object()) {
        Forms forms;
        if (const auto problem = readForms(key, value, forms)) return "\"" + key + "\" " + *problem;
        texts[key] = std::move(forms);
    }
    _texts = std::move(texts);
    return std::nullopt;
}

const std::string* TextCatalogue::find(const std::string& key, const std::string& category) const {
    const auto forms = _texts.find(key);
    if (forms == _texts.end()) return nullptr;
    const auto form = forms->second.find(category);
    return form == forms->second.end() ? &forms->second.at("other") : &form->second;
}

}  // namespace kalim
