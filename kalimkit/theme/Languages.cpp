#include "kalimkit/theme/Languages.h"

#include <algorithm>
#include <cctype>

#include "kalimkit/theme/GivenTexts.h"
#include "kalimkit/theme/PluralRules.h"

namespace kalim {

namespace {

constexpr const char* english = "en";
constexpr const char* chinese = "zh";

// "pt_BR.UTF-8" is "pt-br".
std::string plainName(std::string_view locale) {
    std::string name(locale.substr(0, locale.find_first_of(".@")));
    std::ranges::transform(name, name.begin(), [](unsigned char letter) {
        return letter == '_' ? '-' : static_cast<char>(std::tolower(letter));
    });
    // What Hebrew was called until 1989, and what some systems still say.
    if (name == "iw" || name.starts_with("iw-")) name.replace(0, 2, "he");
    return name;
}

// "pt" of "pt-br"; empty where nothing is left.
std::string wider(const std::string& language) {
    const std::size_t end = language.rfind('-');
    return end == std::string::npos ? std::string() : language.substr(0, end);
}

const GivenTexts* givenNamed(const std::string& language) {
    const auto found =
        std::ranges::find(givenTexts(), std::string_view(language), &GivenTexts::language);
    return found == givenTexts().end() ? nullptr : &*found;
}

}  // namespace

std::vector<std::string> Languages::given() {
    std::vector<std::string> names;
    for (const GivenTexts& texts : givenTexts())
        names.emplace_back(texts.language);
    return names;
}

std::optional<std::string> Languages::add(std::string_view language, std::string_view json) {
    const std::string name = plainName(language);
    if (name.empty()) return "the language has no name";
    TextCatalogue added = has(name) ? catalogue(name) : TextCatalogue();
    if (const auto problem = added.add(json)) return std::string(language) + ": " + *problem;
    _catalogues[name] = std::move(added);
    return std::nullopt;
}

void Languages::choose(std::string_view locale) {
    _chosen = english;
    for (std::string name = plainName(locale); !name.empty(); name = wider(name)) {
        // Chinese is what all keys are in.
        if (!has(name) && name != chinese) continue;
        _chosen = name;
        return;
    }
}

bool Languages::has(const std::string& language) const {
    return _catalogues.contains(language) || givenNamed(language);
}

const TextCatalogue& Languages::catalogue(const std::string& language) const {
    const auto [place, isNew] = _catalogues.try_emplace(language);
    const GivenTexts* const texts = isNew ? givenNamed(language) : nullptr;
    // What is built in was checked when it was.
    if (texts) place->second.add(texts->json);
    return place->second;
}

std::string Languages::text(const std::string& key, std::optional<std::int64_t> count) const {
    const auto find = [&](const std::string& language) {
        const std::string category = count ? pluralCategory(language, *count) : "other";
        return has(language) ? catalogue(language).find(key, category) : nullptr;
    };
    for (std::string name = _chosen; !name.empty(); name = wider(name)) {
        if (const std::string* const text = find(name)) return *text;
        if (name == chinese) return key;
    }
    const std::string* const text = find(english);
    return text ? *text : key;
}

}  // namespace kalim
