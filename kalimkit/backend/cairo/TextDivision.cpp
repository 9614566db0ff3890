#include "kalimkit/backend/cairo/TextDivision.h"

#include <algorithm>

#include "kalimkit/backend/cairo/ShapedText.h"

namespace kalim::gfx {

namespace {

// Bytes. Shorter texts are divided at once.
constexpr std::size_t longLength = 4096;
// Bytes on both sides of a change that count as a part of it.
constexpr std::size_t margin = 16;

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// One of the unified ideographs, by its first byte.
bool isHan(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0xE5 && byte <= 0xE8;
}

bool isBetweenWords(std::string_view text, std::size_t at) {
    return text[at - 1] == ' ' && isLetter(text[at - 2]) && isLetter(text[at]);
}

// What Pango needs grows with the square of what it is given at once.
std::size_t lengthOfPart(std::string_view text) {
    for (std::size_t at = longLength; at < text.size(); ++at) {
        if (isBetweenWords(text, at)) return at;
    }
    return text.size();
}

std::vector<PangoLogAttr> attributesOf(std::string_view utf8, PangoLanguage* language) {
    std::vector<PangoLogAttr> result;
    do {
        const std::size_t length = lengthOfPart(utf8);
        const auto count = g_utf8_strlen(utf8.data(), static_cast<gssize>(length));
        std::vector<PangoLogAttr> part(static_cast<std::size_t>(count) + 1);
        pango_get_log_attrs(utf8.data(), static_cast<int>(length), -1, language, part.data(),
                            static_cast<int>(part.size()));
        if (!result.empty()) {
            result.pop_back();
            part.front().is_line_break = 1;
        }
        result.insert(result.end(), part.begin(), part.end());
        utf8.remove_prefix(length);
    } while (!utf8.empty());
    return result;
}

}  // namespace

void TextDivision::divide(std::string_view text, PangoLanguage* language) {
    if (!_attributes.empty() && text == _text) return;
    const bool isLong = std::min(text.size(), _text.size()) >= longLength;
    replace(isLong ? changed(text) : Span{0, _offsets.size()}, text, language);
    _text = text;
}

// Whether what stands before a code point and what stands behind it are nothing to each other: no
// rule of UAX 14 and UAX 29 looks over the gap between two words of letters, or out of an ideograph
// that has another at its side.
bool TextDivision::isApart(std::size_t index) const {
    const std::size_t at = _offsets[index];
    if (at < 3) return false;
    return isBetweenWords(_text, at) ||
           (isHan(_text[at - 3]) && isHan(_text[at]) && _offsets[index - 1] == at - 3);
}

TextDivision::Span TextDivision::changed(std::string_view text) const {
    const std::size_t shorter = std::min(text.size(), _text.size());
    const auto head = static_cast<std::size_t>(
        std::mismatch(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(shorter),
                      _text.begin())
            .first -
        text.begin());
    std::size_t tail = 0;
    while (tail < shorter - head && text[text.size() - 1 - tail] == _text[_text.size() - 1 - tail])
        ++tail;
    const auto indexAt = [this](std::size_t byte) {
        return static_cast<std::size_t>(std::ranges::lower_bound(_offsets, byte) -
                                        _offsets.begin());
    };
    Span span{indexAt(head - std::min(head, margin)), indexAt(_text.size() - tail + margin)};
    span.first = std::min(span.first, _offsets.size() - 1);
    while (span.first > 0 && !isApart(span.first))
        --span.first;
    while (span.last < _offsets.size() && !isApart(span.last))
        ++span.last;
    return span;
}

// Puts what is known of a text in the place of what was known of the present one's span.
void TextDivision::replace(const Span& span, std::string_view text, PangoLanguage* language) {
    const std::size_t begin = span.first > 0 ? _offsets[span.first] : 0;
    const bool hasRest = span.last < _offsets.size();
    const std::size_t end =
        hasRest ? _offsets[span.last] + text.size() - _text.size() : text.size();
    const MendedText mended(text.substr(begin, end - begin));
    std::vector<PangoLogAttr> found = attributesOf(mended.utf8, language);
    std::vector<std::size_t> offsets(_offsets.begin(),
                                     _offsets.begin() + static_cast<std::ptrdiff_t>(span.first));
    for (const std::size_t offset : mended.offsets)
        offsets.push_back(begin + offset);
    for (std::size_t i = span.last; i < _offsets.size(); ++i)
        offsets.push_back(_offsets[i] + text.size() - _text.size());
    // What is known of the span's edges depends on what lies beyond them.
    std::vector<PangoLogAttr> attributes(
        _attributes.begin(), _attributes.begin() + static_cast<std::ptrdiff_t>(span.first));
    if (span.first > 0) found.front() = _attributes[span.first];
    if (hasRest) found.pop_back();
    attributes.insert(attributes.end(), found.begin(), found.end());
    if (hasRest) {
        attributes.insert(attributes.end(),
                          _attributes.begin() + static_cast<std::ptrdiff_t>(span.last),
                          _attributes.end());
    }
    _offsets = std::move(offsets);
    _attributes = std::move(attributes);
}

}  // namespace kalim::gfx
