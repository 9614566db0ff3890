#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/codec/PersonalTraces.h"

namespace kalim::codec {

namespace {

constexpr std::string_view blanks = " \t\r\n";

constexpr std::array placeNames{
    "City",
    "Country",
    "CountryCode",
    "CountryName",
    "GPSAltitude",
    "GPSAreaInformation",
    "GPSDestLatitude",
    "GPSDestLongitude",
    "GPSLatitude",
    "GPSLongitude",
    "Location",
    "LocationCreated",
    "LocationId",
    "LocationName",
    "LocationShown",
    "ProvinceState",
    "State",
    "Sublocation",
    "WorldRegion",
};
constexpr std::array ownerNames{
    "Artist",           "Author",         "AuthorsPosition",    "CameraOwnerName",
    "CaptionWriter",    "CopyrightOwner", "CopyrightOwnerName", "CreatorContactInfo",
    "ImageCreatorName", "Owner",          "OwnerName",          "creator",
    "rights",
};
constexpr std::array serialNumberNames{
    "BodySerialNumber", "CameraSerialNumber", "InternalSerialNumber",
    "LensSerialNumber", "SerialNumber",
};

// What a property's name says, whatever the prefix that stands for its namespace.
PersonalTraces meaningOf(std::string_view name) {
    const auto isIn = [&](const auto& names) { return std::ranges::count(names, name) > 0; };
    name.remove_prefix(std::min(name.find(':') + 1, name.size()));
    return {isIn(placeNames), isIn(ownerNames), isIn(serialNumberNames)};
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(blanks) == std::string_view::npos;
}

// Goes over the XML once. A property says something when there is a text in its element, however
// deep, or when it is an attribute with a value.
class XmpReader {
public:
    explicit XmpReader(std::string_view text) : _rest(text) {}

    PersonalTraces read() {
        while (!_rest.empty()) {
            const std::string_view text = take(_rest.find('<'));
            if (!isBlank(text) && !_open.empty()) _traces |= _open.back();
            readMarkup();
        }
        return _traces;
    }

private:
    // Cuts off so much, or all that there is.
    std::string_view take(std::size_t length) {
        const std::string_view taken = _rest.substr(0, length);
        _rest.remove_prefix(taken.size());
        return taken;
    }
    void takeBehind(std::string_view end) {
        take(_rest.find(end));
        take(end.size());
    }
    void takeBlanks() { take(_rest.find_first_not_of(blanks)); }

    void readMarkup() {
        if (_rest.starts_with("<!--")) return takeBehind("-->");
        if (_rest.starts_with("<?")) return takeBehind("?>");
        if (_rest.starts_with("</")) {
            if (!_open.empty()) _open.pop_back();
            return takeBehind(">");
        }
        take(1);
        readElement();
    }

    void readElement() {
        PersonalTraces meaning = meaningOf(take(_rest.find_first_of(" \t\r\n/>")));
        if (!_open.empty()) meaning |= _open.back();
        takeBlanks();
        while (!_rest.empty() && _rest.front() != '>' && _rest.front() != '/') {
            readAttribute();
            takeBlanks();
        }
        if (!_rest.starts_with("/")) _open.push_back(meaning);
        takeBehind(">");
    }

    void readAttribute() {
        const std::string_view name = take(_rest.find_first_of(" \t\r\n=/>"));
        takeBlanks();
        if (!_rest.starts_with("=")) {
            // No program writes this; it must not be looked at for ever.
            if (name.empty()) take(1);
            return;
        }
        take(1);
        takeBlanks();
        const std::string_view quote = take(1);
        const std::string_view value = take(_rest.find(quote));
        take(1);
        if (!isBlank(value)) _traces |= meaningOf(name);
    }

    std::string_view _rest;
    // What the elements say that stand around this place.
    std::vector<PersonalTraces> _open;
    PersonalTraces _traces;
};

}  // namespace

PersonalTraces tracesInXmp(ByteSpan xmp) {
    std::string text(xmp.begin(), xmp.end());
    // Names are plain letters: without the zeros of wider encodings they read alike.
    std::erase(text, '\0');
    return XmpReader(text).read();
}

}  // namespace kalim::codec
