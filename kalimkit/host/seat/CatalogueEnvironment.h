#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/host/seat/SeatEnvironment.h"
#include "kalimkit/theme/Languages.h"

namespace kalim {

// One whose texts are those that are built into the library, and what the host adds to them.
class KALIM_API CatalogueEnvironment : public SeatEnvironment {
public:
    // Adds a language, or texts to one there is; see Languages::add. It counts from the next
    // setLanguage() on. Answers with what is wrong, and nothing changes then.
    std::optional<std::string> addTexts(std::string_view language, std::string_view json);
    // See Languages::choose.
    void setLanguage(std::string_view locale) override;
    std::string localizedString(const std::string& key) const override;
    std::string localizedCount(const std::string& key, std::int64_t count) const override;

private:
    Languages _languages;
};

}  // namespace kalim
