#include "kalimkit/codec/ExifCarrying.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "kalimkit/codec/EmbeddedPictures.h"
#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/PhotoshopCarrying.h"
#include "kalimkit/codec/XmpCarrying.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::uint16_t widthTag = 0x0100;
constexpr std::uint16_t heightTag = 0x0101;
constexpr std::uint16_t orientationTag = 0x0112;
constexpr std::uint16_t xmpTag = 0x02BC;
constexpr std::uint16_t copyrightTag = 0x8298;
constexpr std::uint16_t photoshopTag = 0x8649;
constexpr std::uint16_t subjectAreaTag = 0x9214;
constexpr std::uint16_t subjectLocationTag = 0xA214;
constexpr std::uint16_t pixelWidthTag = 0xA002;
constexpr std::uint16_t pixelHeightTag = 0xA003;

// The form that a field has to have, so that nothing else travels in it.
enum class Form { Name, Words, Date, Fraction, Zone, Number, Numbers, Code };

struct SafeField {
    std::uint16_t tag;
    Form form;
};

// Make, model, resolution, date, where colours lie between pixels, copyright.
constexpr std::array safeMain{
    SafeField{0x010F, Form::Name},   SafeField{0x0110, Form::Name},
    SafeField{0x011A, Form::Number}, SafeField{0x011B, Form::Number},
    SafeField{0x0128, Form::Number}, SafeField{0x0132, Form::Date},
    SafeField{0x0213, Form::Number}, SafeField{0x8298, Form::Words},
};

constexpr std::array safeCamera{
    SafeField{0x829A, Form::Number},    // exposure time
    SafeField{0x829D, Form::Number},    // aperture
    SafeField{0x8822, Form::Number},    // exposure program
    SafeField{0x8827, Form::Numbers},   // sensitivity
    SafeField{0x8830, Form::Number},    // which sensitivity that is
    SafeField{0x8831, Form::Number},    // of the output
    SafeField{0x8832, Form::Number},    // recommended
    SafeField{0x8833, Form::Number},    // ISO speed, its latitudes
    SafeField{0x8834, Form::Number},    //
    SafeField{0x8835, Form::Number},    //
    SafeField{0x9000, Form::Code},      // version of Exif
    SafeField{0x9003, Form::Date},      // taken
    SafeField{0x9004, Form::Date},      // made digital
    SafeField{0x9010, Form::Zone},      // of the three dates
    SafeField{0x9011, Form::Zone},      //
    SafeField{0x9012, Form::Zone},      //
    SafeField{0x9101, Form::Code},      // order of the colours
    SafeField{0x9201, Form::Number},    // shutter speed
    SafeField{0x9202, Form::Number},    // aperture
    SafeField{0x9203, Form::Number},    // brightness
    SafeField{0x9204, Form::Number},    // exposure bias
    SafeField{0x9205, Form::Number},    // widest aperture
    SafeField{0x9206, Form::Number},    // distance
    SafeField{0x9207, Form::Number},    // metering
    SafeField{0x9208, Form::Number},    // kind of light
    SafeField{0x9209, Form::Number},    // flash
    SafeField{0x920A, Form::Number},    // focal length
    SafeField{0x9290, Form::Fraction},  // of the three dates' seconds
    SafeField{0x9291, Form::Fraction},  //
    SafeField{0x9292, Form::Fraction},  //
    SafeField{0xA000, Form::Code},      // version of Flashpix, which Exif demands
    SafeField{0xA001, Form::Number},    // colour space
    SafeField{0xA20B, Form::Number},    // energy of the flash
    SafeField{0xA215, Form::Number},    // exposure index
    SafeField{0xA217, Form::Number},    // sensor
    SafeField{0xA300, Form::Code},      // a camera's picture, taken directly
    SafeField{0xA301, Form::Code},      //
    SafeField{0xA401, Form::Number},    // rendered in an uncommon way
    SafeField{0xA402, Form::Number},    // exposure mode
    SafeField{0xA403, Form::Number},    // white balance
    SafeField{0xA404, Form::Number},    // digital zoom
    SafeField{0xA405, Form::Number},    // focal length on 35 mm film
    SafeField{0xA406, Form::Number},    // scene
    SafeField{0xA407, Form::Number},    // gain
    SafeField{0xA408, Form::Number},    // contrast, saturation, sharpness
    SafeField{0xA409, Form::Number},    //
    SafeField{0xA40A, Form::Number},    //
    SafeField{0xA40C, Form::Number},    // range of the distance
    SafeField{0xA432, Form::Numbers},   // the lens: its limits, make, model
    SafeField{0xA433, Form::Name},      //
    SafeField{0xA434, Form::Name},      //
    SafeField{0xA500, Form::Number},    // gamma
};

// The rule of the file's names, which says that the picture is in Adobe's colours.
constexpr std::array safeExchange{SafeField{0x0001, Form::Name}, SafeField{0x0002, Form::Code}};

// Pixels or places of pixels, directories that are not known, the profile, originals.
constexpr std::array<std::uint16_t, 15> pictureTags{
    0x0111, 0x0117, 0x0144, 0x0145, 0x014A, 0x0201, 0x0202, 0x8290,
    0x8773, 0xC51B, 0xC68C, 0xC6D3, 0xC7A7, 0xEA1C, 0xFE00,
};

bool isText(const TiffEntry& entry) {
    return entry.type == tiffType::ascii || entry.type == tiffType::utf8;
}

bool isNumber(const TiffEntry& entry) {
    return !isText(entry) && entry.type != tiffType::undefined &&
           entry.type != tiffType::directory && entry.type != tiffType::byte &&
           entry.type != tiffType::signedByte;
}

// Texts end with a zero, behind which others might follow. A copyright has up to two, the second of
// which is the editor's.
void cutBehind(Bytes& text, int partCount) {
    auto end = std::ranges::find(text, 0);
    for (int i = 1; i < partCount && end != text.end(); ++i)
        end = std::find(end + 1, text.end(), 0);
    text.erase(end, text.end());
    while (!text.empty() && text.back() == 0)
        text.pop_back();
}

bool takeText(TiffEntry& entry, std::size_t longest, std::string_view letters) {
    if (!isText(entry)) return false;
    cutBehind(entry.value, entry.tag == copyrightTag ? 2 : 1);
    const bool isAllowed =
        letters.empty() || std::ranges::all_of(entry.value, [letters](std::uint8_t letter) {
            return letters.find(static_cast<char>(letter)) != std::string_view::npos;
        });
    const bool says =
        std::ranges::any_of(entry.value, [](std::uint8_t letter) { return letter > ' '; });
    if (!isAllowed || !says || entry.value.size() > longest) return false;
    entry.value.push_back(0);
    return true;
}

// Whether the entry has the form, after what goes beyond it has been taken away.
bool takeForm(TiffEntry& entry, Form form) {
    constexpr std::size_t numberBytes = 8;
    constexpr std::size_t numbersBytes = 32;
    switch (form) {
        case Form::Name:
            return takeText(entry, 200, {});
        case Form::Words:
            return takeText(entry, 2000, {});
        case Form::Date:
            return takeText(entry, 19, "0123456789: "sv);
        case Form::Fraction:
            return takeText(entry, 9, "0123456789 "sv);
        case Form::Zone:
            return takeText(entry, 6, "0123456789:+-Z "sv);
        case Form::Number:
            return isNumber(entry) && entry.value.size() <= numberBytes;
        case Form::Numbers:
            return isNumber(entry) && entry.value.size() <= numbersBytes;
        case Form::Code:
            return entry.type == tiffType::undefined && entry.value.size() <= 4;
    }
    return false;
}

template <typename Fields>
TiffDirectory safeFields(const TiffDirectory& source, const Fields& fields) {
    TiffDirectory safe;
    for (const SafeField& field : fields) {
        const TiffEntry* const found = findEntry(source, field.tag);
        if (!found) continue;
        TiffEntry entry = *found;
        if (takeForm(entry, field.form)) safe.push_back(std::move(entry));
    }
    return safe;
}

void makeTrue(TiffStructure& structure, const TiffStructure& source, const MetadataFacts& facts) {
    const int orientation = exifOrientationNumber(facts.orientation);
    if (orientation != 1 || findEntry(source.main, orientationTag)) {
        putEntry(structure.main,
                 structure.entry(orientationTag, static_cast<std::uint32_t>(orientation)));
    }
    const auto setSize = [&](TiffDirectory& directory, std::uint16_t tag, int size) {
        putEntry(directory, structure.entry(tag, static_cast<std::uint32_t>(size)));
    };
    if (findEntry(structure.main, widthTag)) setSize(structure.main, widthTag, facts.width);
    if (findEntry(structure.main, heightTag)) setSize(structure.main, heightTag, facts.height);
    if (!findEntry(source.exif, pixelWidthTag) && !findEntry(source.exif, pixelHeightTag)) return;
    setSize(structure.exif, pixelWidthTag, facts.width);
    setSize(structure.exif, pixelHeightTag, facts.height);
}

// What no camera's note and no text is longer than.
constexpr std::size_t longestNote = 65535;
constexpr std::size_t longestValue = 32768;

bool keepEntry(TiffEntry& entry, const MetadataFacts& facts) {
    if (std::ranges::count(pictureTags, entry.tag) > 0 || entry.type == tiffType::directory)
        return false;
    switch (entry.tag) {
        case makerNoteTag:
            blankPictures(entry.value);
            return entry.value.size() <= longestNote;
        case xmpTag:
            entry.type = tiffType::byte;
            entry.value = keptXmp(entry.value, facts);
            return !entry.value.empty();
        case photoshopTag:
            entry.type = tiffType::undefined;
            entry.value = keptPhotoshop(entry.value);
            return !entry.value.empty();
        case subjectAreaTag:
        case subjectLocationTag:
            return facts.hasSamePlaces;
        default:
            return entry.value.size() <= longestValue && !holdsPicture(entry.value);
    }
}

TiffDirectory keptFields(const TiffDirectory& source, const MetadataFacts& facts) {
    TiffDirectory kept;
    for (TiffEntry entry : source) {
        if (keepEntry(entry, facts)) kept.push_back(std::move(entry));
    }
    return kept;
}

}  // namespace

TiffStructure safeExif(const TiffStructure& source, const MetadataFacts& facts,
                       const std::string& copyright) {
    TiffStructure safe{source.isBigEndian,
                       safeFields(source.main, safeMain),
                       safeFields(source.exif, safeCamera),
                       {},
                       safeFields(source.exchange, safeExchange)};
    if (!copyright.empty() && !findEntry(safe.main, copyrightTag)) {
        TiffEntry entry = TiffStructure::text(copyrightTag, copyright);
        if (takeForm(entry, Form::Words)) putEntry(safe.main, std::move(entry));
    }
    makeTrue(safe, source, facts);
    return safe;
}

TiffStructure keptExif(const TiffStructure& source, const MetadataFacts& facts) {
    TiffStructure kept{source.isBigEndian, keptFields(source.main, facts),
                       keptFields(source.exif, facts), keptFields(source.place, facts),
                       keptFields(source.exchange, facts)};
    makeTrue(kept, source, facts);
    return kept;
}

TiffStructure bareExif(const MetadataFacts& facts) {
    TiffStructure bare;
    makeTrue(bare, {}, facts);
    return bare;
}

}  // namespace kalim::codec
