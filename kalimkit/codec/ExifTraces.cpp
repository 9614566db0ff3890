#include <libexif/exif-data.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "kalimkit/codec/PersonalTraces.h"

namespace kalim::codec {

namespace {

struct DataDeleter {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};

// Cameras leave fields that nobody has filled in: blanks, zeros.
bool saysSomething(const ExifEntry& entry) {
    const std::uint8_t blank = entry.format == EXIF_FORMAT_ASCII ? ' ' : 0;
    return entry.data != nullptr &&
           std::any_of(entry.data, entry.data + entry.size,
                       [blank](std::uint8_t byte) { return byte > blank; });
}

bool isPlace(unsigned tag) {
    switch (tag) {
        case EXIF_TAG_GPS_LATITUDE:
        case EXIF_TAG_GPS_LONGITUDE:
        case EXIF_TAG_GPS_ALTITUDE:
        case EXIF_TAG_GPS_DEST_LATITUDE:
        case EXIF_TAG_GPS_DEST_LONGITUDE:
        case EXIF_TAG_GPS_AREA_INFORMATION:
            return true;
        default:
            return false;
    }
}

PersonalTraces meaningOf(unsigned tag) {
    // That of raw pictures, which the library has no name for.
    constexpr unsigned cameraSerialNumber = 0xC62F;
    switch (tag) {
        case EXIF_TAG_ARTIST:
        case EXIF_TAG_COPYRIGHT:
        case EXIF_TAG_XP_AUTHOR:
        case EXIF_TAG_CAMERA_OWNER_NAME:
            return {.owner = true};
        case EXIF_TAG_BODY_SERIAL_NUMBER:
        case EXIF_TAG_LENS_SERIAL_NUMBER:
        case cameraSerialNumber:
            return {.serialNumber = true};
        default:
            return {};
    }
}

PersonalTraces tracesInDirectory(const ExifContent& content, bool isGps) {
    PersonalTraces traces;
    for (unsigned i = 0; i < content.count; ++i) {
        const ExifEntry& entry = *content.entries[i];
        if (!saysSomething(entry)) continue;
        if (isGps) {
            traces.place |= isPlace(entry.tag);
        } else {
            traces |= meaningOf(entry.tag);
        }
    }
    return traces;
}

// Makers of cameras keep fields of their own.
PersonalTraces tracesInMakerNote(ExifMnoteData* note) {
    PersonalTraces traces;
    const unsigned count = note ? exif_mnote_data_count(note) : 0;
    for (unsigned i = 0; i < count; ++i) {
        const char* const name = exif_mnote_data_get_name(note, i);
        char value[64]{};
        if (!name || !exif_mnote_data_get_value(note, i, value, sizeof value)) continue;
        if (std::string_view(value).find_first_not_of(" 0") == std::string_view::npos) continue;
        traces.owner |= std::string_view(name).find("Owner") != std::string_view::npos;
        traces.serialNumber |=
            std::string_view(name).find("SerialNumber") != std::string_view::npos;
    }
    return traces;
}

}  // namespace

PersonalTraces tracesInExif(ByteSpan exif) {
    if (exif.empty()) return {};
    const std::unique_ptr<ExifData, DataDeleter> data(exif_data_new());
    if (!data) return {};
    // The library drops tags otherwise that it has no name for or that stand where they should not.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    Bytes block{'E', 'x', 'i', 'f', 0, 0};
    block.insert(block.end(), exif.begin(), exif.end());
    exif_data_load_data(data.get(), block.data(), static_cast<unsigned>(block.size()));
    PersonalTraces traces = tracesInMakerNote(exif_data_get_mnote_data(data.get()));
    for (const ExifIfd directory : {EXIF_IFD_0, EXIF_IFD_1, EXIF_IFD_EXIF, EXIF_IFD_GPS}) {
        const ExifContent* const content = data->ifd[directory];
        if (content) traces |= tracesInDirectory(*content, directory == EXIF_IFD_GPS);
    }
    return traces;
}

}  // namespace kalim::codec
