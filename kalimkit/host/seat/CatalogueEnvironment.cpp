#include "kalimkit/host/seat/CatalogueEnvironment.h"

namespace kalim {

std::optional<std::string> CatalogueEnvironment::addTexts(std::string_view language,
                                                          std::string_view json) {
    return _languages.add(language, json);
}

void CatalogueEnvironment::setLanguage(std::string_view locale) {
    _languages.choose(locale);
    speak(_languages.chosen());
}

std::string CatalogueEnvironment::localizedString(const std::string& key) const {
    return _languages.text(key);
}

std::string CatalogueEnvironment::localizedCount(const std::string& key, std::int64_t count) const {
    return _languages.text(key, count);
}

}  // namespace kalim
