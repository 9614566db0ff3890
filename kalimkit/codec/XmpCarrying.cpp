#include "kalimkit/codec/XmpCarrying.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/codec/ExifOrientation.h"

namespace kalim::codec {

namespace {

constexpr std::string_view blanks = " \t\r\n";

// Small pictures; films and depths behind the file's end; the link to a continuation.
constexpr std::array<std::string_view, 13> droppedNames{
    "Thumbnails",
    "PageInfo",
    "HasExtendedXMP",
    "Directory",
    "MotionPhoto",
    "MotionPhotoVersion",
    "MotionPhotoPresentationTimestampUs",
    "MicroVideo",
    "MicroVideoVersion",
    "MicroVideoOffset",
    "MicroVideoPresentationTimestampUs",
    "DepthMap",
    "AuxiliaryImage",
};
// Of properties that hold pictures or describe ones.
constexpr std::array<std::string_view, 6> droppedPrefixes{"xmpGImg", "GImage", "GDepth",
                                                          "GAudio",  "hdrgm",  "apdi"};

std::string_view prefixOf(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

std::string_view localName(std::string_view name) {
    return name.substr(name.find(':') + 1);
}

bool isDropped(std::string_view name) {
    return std::ranges::count(droppedNames, localName(name)) > 0 ||
           std::ranges::count(droppedPrefixes, prefixOf(name)) > 0;
}

// As a picture is written in letters: by how its kinds begin, or by its length without a blank.
bool isPicture(std::string_view value) {
    constexpr std::size_t longestWord = 16384;
    value.remove_prefix(std::min(value.find_first_not_of(blanks), value.size()));
    for (const std::string_view start : {"/9j/", "iVBORw0KGgo", "UklGR", "data:image/"}) {
        if (value.size() > 32 && value.starts_with(start)) return true;
    }
    std::size_t length = 0;
    for (const char letter : value) {
        const auto code = static_cast<unsigned char>(letter);
        const bool isCode = std::isalnum(code) != 0 || letter == '+' || letter == '/';
        // Lines go on.
        if (letter == '\n' || letter == '\r') continue;
        length = isCode ? length + 1 : 0;
        if (length > longestWord) return true;
    }
    return false;
}

// Reads a packet and hears of its parts, in their order.
class XmpWalk {
public:
    explicit XmpWalk(std::string_view text) : _rest(text) {}
    virtual ~XmpWalk() = default;
    XmpWalk(const XmpWalk&) = delete;
    XmpWalk& operator=(const XmpWalk&) = delete;

    // Whether it is whole.
    bool walk() {
        while (!_rest.empty()) {
            const std::string_view text = take(_rest.find('<'));
            if (!text.empty()) onText(text);
            if (!_rest.empty() && !walkMarkup()) return false;
        }
        return _open.empty();
    }

protected:
    virtual void onText(std::string_view text) = 0;
    // What is neither text nor element, as it stands.
    virtual void onOther(std::string_view /*markup*/) {}
    virtual void onStart(std::string_view name) = 0;
    virtual void onAttribute(std::string_view name, std::string_view quotedValue) = 0;
    virtual void onStartEnd(bool isEmpty) = 0;
    // After it has been taken off what is open.
    virtual void onEnd(std::string_view name) = 0;

    const std::vector<std::string_view>& open() const { return _open; }

private:
    // Cuts off so much, or all that there is.
    std::string_view take(std::size_t length) {
        const std::string_view taken = _rest.substr(0, length);
        _rest.remove_prefix(taken.size());
        return taken;
    }
    void takeBlanks() { take(_rest.find_first_not_of(blanks)); }
    bool takeLetter(char letter) {
        if (!_rest.starts_with(letter)) return false;
        take(1);
        return true;
    }

    bool walkMarkup() {
        for (const auto& [start, end] :
             {std::pair<std::string_view, std::string_view>{"<!--", "-->"},
              {"<?", "?>"},
              {"<![CDATA[", "]]>"}}) {
            if (!_rest.starts_with(start)) continue;
            const std::size_t found = _rest.find(end, start.size());
            if (found == std::string_view::npos) return false;
            const std::string_view whole = take(found + end.size());
            if (start.size() == 9) {
                onText(whole);
            } else {
                onOther(whole);
            }
            return true;
        }
        if (_rest.starts_with("<!")) return false;
        take(1);
        return takeLetter('/') ? walkEnd() : walkElement();
    }

    bool walkEnd() {
        const std::string_view name = take(_rest.find_first_of(" \t\r\n>"));
        takeBlanks();
        if (_open.empty() || _open.back() != name || !takeLetter('>')) return false;
        _open.pop_back();
        onEnd(name);
        return true;
    }

    bool walkElement() {
        const std::string_view name = take(_rest.find_first_of(" \t\r\n/>"));
        if (name.empty()) return false;
        onStart(name);
        for (takeBlanks(); !_rest.starts_with('>') && !_rest.starts_with('/'); takeBlanks()) {
            const std::string_view attribute = take(_rest.find_first_of(" \t\r\n=/>"));
            takeBlanks();
            if (attribute.empty() || !takeLetter('=')) return false;
            takeBlanks();
            if (!_rest.starts_with('"') && !_rest.starts_with('\'')) return false;
            const std::size_t end = _rest.find(_rest.front(), 1);
            if (end == std::string_view::npos) return false;
            onAttribute(attribute, take(end + 1));
        }
        const bool isEmpty = takeLetter('/');
        if (!takeLetter('>')) return false;
        if (!isEmpty) _open.push_back(name);
        onStartEnd(isEmpty);
        if (isEmpty) onEnd(name);
        return true;
    }

    std::string_view _rest;
    std::vector<std::string_view> _open;
};

class XmpFilter : public XmpWalk {
public:
    XmpFilter(std::string_view text, const MetadataFacts& facts) : XmpWalk(text), _facts(facts) {}

    std::string kept;

private:
    // The value that a property has to have, if the file knows better.
    std::optional<std::string> truth(std::string_view name) const {
        const std::string_view local = localName(name);
        if (local == "Orientation")
            return std::to_string(exifOrientationNumber(_facts.orientation));
        if (local == "PixelXDimension" || local == "ImageWidth")
            return std::to_string(_facts.width);
        if (local == "PixelYDimension" || local == "ImageLength" || local == "ImageHeight")
            return std::to_string(_facts.height);
        return std::nullopt;
    }

    void onText(std::string_view text) override {
        if (_isDropping || isPicture(text)) return;
        const bool isBlank = text.find_first_not_of(blanks) == std::string_view::npos;
        if (isBlank && open().empty()) {
            // Room for changes, which tells how long the packet has been.
            kept += '\n';
            return;
        }
        const auto better = open().empty() || isBlank ? std::nullopt : truth(open().back());
        kept += better ? *better : text;
    }
    void onOther(std::string_view markup) override {
        if (!_isDropping && !isPicture(markup)) kept += markup;
    }
    void onStart(std::string_view name) override {
        if (!_isDropping && isDropped(name)) {
            _isDropping = true;
            _droppedDepth = open().size();
        }
        if (_isDropping) return;
        kept += '<';
        kept += name;
    }
    void onAttribute(std::string_view name, std::string_view quotedValue) override {
        const std::string_view value = quotedValue.substr(1, quotedValue.size() - 2);
        if (_isDropping || (isDropped(name) && prefixOf(name) != "xmlns") || isPicture(value))
            return;
        kept += ' ';
        kept += name;
        kept += '=';
        const auto better = truth(name);
        kept += better ? "\"" + *better + "\"" : std::string(quotedValue);
    }
    void onStartEnd(bool isEmpty) override {
        if (!_isDropping) kept += isEmpty ? "/>" : ">";
        _wasEmpty = isEmpty;
    }
    void onEnd(std::string_view name) override {
        if (!_isDropping && !_wasEmpty) {
            kept += "</";
            kept += name;
            kept += '>';
        }
        _wasEmpty = false;
        if (_isDropping && open().size() == _droppedDepth) _isDropping = false;
    }

    const MetadataFacts& _facts;
    bool _isDropping = false;
    bool _wasEmpty = false;
    std::size_t _droppedDepth = 0;
};

// The first text within the property of that name.
class XmpReading : public XmpWalk {
public:
    XmpReading(std::string_view text, std::string_view property)
        : XmpWalk(text), _property(property) {}

    std::string found;

private:
    void onText(std::string_view text) override {
        const bool isIn = std::ranges::any_of(
            open(), [this](std::string_view name) { return localName(name) == _property; });
        if (isIn && found.empty() && text.find_first_not_of(blanks) != std::string_view::npos)
            found = text;
    }
    void onStart(std::string_view /*name*/) override {}
    void onAttribute(std::string_view name, std::string_view quotedValue) override {
        if (found.empty() && localName(name) == _property)
            found = quotedValue.substr(1, quotedValue.size() - 2);
    }
    void onStartEnd(bool /*isEmpty*/) override {}
    void onEnd(std::string_view /*name*/) override {}

    std::string_view _property;
};

std::string_view letters(ByteSpan bytes) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    // Some writers fill up with zeros, and begin with the mark of the encoding.
    while (text.ends_with('\0'))
        text.remove_suffix(1);
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    return text;
}

// XML's five names for letters.
std::string withoutEntities(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        bool isEntity = false;
        for (const auto& [name, letter] : {std::pair<std::string_view, char>{"&amp;", '&'},
                                           {"&lt;", '<'},
                                           {"&gt;", '>'},
                                           {"&quot;", '"'},
                                           {"&apos;", '\''}}) {
            if (!text.starts_with(name)) continue;
            plain += letter;
            text.remove_prefix(name.size());
            isEntity = true;
            break;
        }
        if (isEntity) continue;
        plain += text.front();
        text.remove_prefix(1);
    }
    return plain;
}

}  // namespace

Bytes keptXmp(ByteSpan xmp, const MetadataFacts& facts) {
    const std::string_view text = letters(xmp);
    if (text.find('\0') != std::string_view::npos) return {};
    XmpFilter filter(text, facts);
    if (!filter.walk()) return {};
    return {filter.kept.begin(), filter.kept.end()};
}

Bytes joinedXmp(ByteSpan xmp, ByteSpan continuation) {
    constexpr std::string_view start = "<rdf:RDF";
    constexpr std::string_view end = "</rdf:RDF>";
    std::string_view more = letters(continuation);
    const std::size_t first = more.find('>', std::min(more.find(start), more.size()));
    const std::size_t last = more.rfind(end);
    const std::size_t place = letters(xmp).rfind(end);
    Bytes joined(xmp.begin(), xmp.end());
    if (first == std::string_view::npos || last == std::string_view::npos || last <= first ||
        place == std::string_view::npos)
        return joined;
    more = more.substr(first + 1, last - first - 1);
    const auto at = static_cast<std::ptrdiff_t>(
        place + (letters(xmp).data() - reinterpret_cast<const char*>(xmp.data())));
    joined.insert(joined.begin() + at, more.begin(), more.end());
    return joined;
}

std::string copyrightInXmp(ByteSpan xmp) {
    XmpReading reading(letters(xmp), "rights");
    reading.walk();
    return withoutEntities(reading.found);
}

}  // namespace kalim::codec
