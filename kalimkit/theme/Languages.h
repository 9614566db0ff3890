#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/TextCatalogue.h"

namespace kalim {

// The languages that an environment's texts can be had in: those that are built in, and what a host
// adds to them. One is chosen.
class KALIM_API Languages {
public:
    // Of the built-in ones, such as "de", in the order of their names.
    static std::vector<std::string> given();

    // Adds a language, or texts to one; see TextCatalogue. Answers with what is wrong, and nothing
    // changes then.
    std::optional<std::string> add(std::string_view language, std::string_view json);
    // Takes the language of a locale such as "pt_BR.UTF-8" or "zh-CN", or the one that comes next
    // to it: Portuguese for "pt-BR". English for one that there are no texts for, and for "C",
    // "POSIX" and an empty one.
    void choose(std::string_view locale);
    const std::string& chosen() const { return _chosen; }

    // The text of the chosen language for a key, in English where it has none; the key itself where
    // that has none either, or for Chinese. With a count its plural.
    std::string text(const std::string& key,
                     std::optional<std::int64_t> count = std::nullopt) const;

private:
    bool has(const std::string& language) const;
    const TextCatalogue& catalogue(const std::string& language) const;

    std::string _chosen = "zh";
    // A built-in one is read when it is first wanted.
    mutable std::map<std::string, TextCatalogue> _catalogues;
};

}  // namespace kalim
