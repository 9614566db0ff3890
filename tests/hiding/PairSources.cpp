#include "tests/hiding/PairSources.h"

#include <webp/encode.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/PngText.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/image/UprightBitmap.h"
#include "kalimkit/json/Base64.h"
#include "tests/codec/JpegFiles.h"
#include "tests/codec/PictureFiles.h"

namespace kalim::test {

namespace {

using codec::Bytes;
using codec::test::concatenated;
using codec::test::makePattern;
using codec::test::PatternRecipe;
using codec::test::withInserted;

const gfx::PixelRect pngSecret{37, 29, 44, 31};

// Blocks of strong colours, others in the secret of the other file, as are the letters' edges.
gfx::Bitmap scene(int width, int height, const gfx::PixelRect& secret, bool isOther,
                  bool isTransparent = false) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool isSecret = x >= secret.x && x < secret.x + secret.width && y >= secret.y &&
                                  y < secret.y + secret.height;
            const int turn = isSecret ? (isOther ? 5 : 2) : 0;
            const int weave = ((x + turn) * 7 + y * (13 - turn)) % 31;
            const double shade = isSecret && (x / 3 + y / (3 + turn)) % 2 == 0 ? 0.1 : 0.7;
            const bool isClear = isTransparent && (x / 11 + y / 9 + (isSecret && isOther)) % 3 == 0;
            bitmap.setColorAt(x, y,
                              {shade * x / width, shade * y / height, weave / 31.0 * shade,
                               isClear ? (isSecret ? 0.0 : 0.4) : 1.0});
        }
    }
    return bitmap;
}

Bytes png(const gfx::Bitmap& bitmap) {
    Bytes bytes;
    codec::encodePng(bitmap, bytes);
    return bytes;
}

Bytes text(const char* letters) {
    return {letters, letters + std::strlen(letters)};
}

// A small JPEG of the secret, such as cameras put into their files.
Bytes thumbnail(bool isOther) {
    return makePattern(
        {.width = 16, .height = 16, .sampling = "1x1", .otherSide = isOther ? 16 : 0});
}

// Exif with the orientation, and the thumbnail in a second directory. Little-endian.
Bytes exifWithThumbnail(std::uint8_t orientation, bool isOther) {
    Bytes exif = text("II*");
    const Bytes head{0, 8, 0, 0, 0, 1, 0, 0x12, 0x01, 3, 0, 1, 0, 0, 0, orientation, 0, 0, 0, 26, 0,
                     0, 0,
                     // The thumbnail's place and size.
                     2, 0, 0x01, 0x02, 4, 0, 1, 0, 0, 0, 56, 0, 0, 0, 0x02, 0x02, 4, 0, 1, 0, 0, 0};
    exif.insert(exif.end(), head.begin(), head.end());
    const Bytes small = thumbnail(isOther);
    for (int shift = 0; shift < 32; shift += 8)
        exif.push_back(static_cast<std::uint8_t>(small.size() >> shift));
    exif.insert(exif.end(), 4, 0);
    return concatenated(exif, small);
}

Bytes jpegSegment(std::uint8_t marker, const Bytes& data) {
    const std::size_t size = data.size() + 2;
    const Bytes head{0xFF, marker, static_cast<std::uint8_t>(size >> 8),
                     static_cast<std::uint8_t>(size & 255)};
    return concatenated(head, data);
}

Bytes withJpegSegment(const Bytes& file, std::uint8_t marker, const char* name, const Bytes& data) {
    Bytes named = text(name);
    named.push_back(0);
    return withInserted(file, 2, jpegSegment(marker, concatenated(named, data)));
}

// A picture of the secret in a block that nobody knows, and one behind the end.
Bytes withTales(const Bytes& file, bool isOther) {
    const Bytes inside = withJpegSegment(file, 0xE9, "TALE", thumbnail(isOther));
    return concatenated(inside, thumbnail(isOther));
}

// It tells when it was made, so that there is one of it.
const Bytes& profile() {
    static const Bytes made = codec::test::makeSwappingProfile();
    return made;
}

// Where the secret of a stored JPEG is in the upright picture.
gfx::PixelRect uprightSecret(const PatternRecipe& recipe) {
    gfx::Bitmap stored(recipe.width, recipe.height);
    for (int y = recipe.otherY; y < std::min(recipe.otherY + recipe.otherSide, recipe.height); ++y)
        for (int x = recipe.otherX; x < std::min(recipe.otherX + recipe.otherSide, recipe.width);
             ++x)
            stored.setColorAt(x, y, {1, 1, 1, 1});
    using enum gfx::ImageOrientation;
    static constexpr gfx::ImageOrientation orientations[] = {
        Up, UpMirrored, Down, DownMirrored, LeftMirrored, Right, RightMirrored, Left};
    const gfx::Bitmap upright = uprightBitmap(stored, orientations[recipe.orientation - 1]);
    gfx::PixelRect rect{upright.width(), upright.height(), 0, 0};
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < upright.height(); ++y) {
        for (int x = 0; x < upright.width(); ++x) {
            if (upright.row(y)[4 * x + 3] == 0) continue;
            rect.x = std::min(rect.x, x);
            rect.y = std::min(rect.y, y);
            right = std::max(right, x + 1);
            bottom = std::max(bottom, y + 1);
        }
    }
    return {rect.x, rect.y, right - rect.x, bottom - rect.y};
}

void addJpegs(std::vector<PairSource>& sources) {
    const auto add = [&](const std::string& name, PatternRecipe recipe,
                         const std::function<Bytes(Bytes, bool)>& dress = {}) {
        recipe.otherX = 33;
        recipe.otherY = 27;
        recipe.otherSide = 29;
        const auto make = [recipe, dress](bool isOther) {
            PatternRecipe own = recipe;
            if (!isOther) own.otherSide = 0;
            const Bytes file = makePattern(own);
            return dress ? dress(file, isOther) : file;
        };
        sources.push_back({"jpeg " + name, make, uprightSecret(recipe), true});
    };
    add("4:4:4", {.sampling = "1x1 1x1 1x1"});
    add("4:2:2", {.sampling = "2x1 1x1 1x1"});
    add("4:4:0", {.sampling = "1x2 1x1 1x1"});
    add("4:2:0", {});
    add("4:1:1", {.sampling = "4x1 1x1 1x1"});
    add("grey", {.sampling = "1x1"});
    add("of RGB", {.sampling = "1x1 1x1 1x1", .isRgb = true});
    add("odd sizes", {.width = 93, .height = 71});
    add("progressive", {.isProgressive = true});
    add("progressive without its last bits", {.isProgressive = true, .lacksBits = true});
    add("with restarts", {.restartInterval = 3});
    add("arithmetic", {.isArithmetic = true});
    add("coarse", {.quality = 30});
    for (std::uint16_t orientation = 2; orientation <= 8; ++orientation)
        add("turned " + std::to_string(orientation),
            {.width = 95, .height = 78, .sampling = "2x1 1x1 1x1", .orientation = orientation});
    add("with a thumbnail", {}, [](const Bytes& file, bool isOther) {
        Bytes exif(1, 0);
        return withJpegSegment(file, 0xE1, "Exif",
                               concatenated(exif, exifWithThumbnail(1, isOther)));
    });
    add("with a profile", {}, [](const Bytes& file, bool) {
        return withJpegSegment(file, 0xE2, "ICC_PROFILE", concatenated(Bytes{1, 1}, profile()));
    });
    add("with tales", {}, withTales);
}

void addPngs(std::vector<PairSource>& sources) {
    const auto add = [&](const std::string& name, const std::function<Bytes(bool)>& make) {
        sources.push_back({"png " + name, make, pngSecret});
    };
    // Behind the header.
    constexpr std::size_t afterHeader = 33;
    add("opaque", [](bool isOther) { return png(scene(131, 97, pngSecret, isOther)); });
    add("transparent", [](bool isOther) { return png(scene(131, 97, pngSecret, isOther, true)); });
    add("with a thumbnail", [](bool isOther) {
        const Bytes chunk = codec::test::makeChunk("eXIf", exifWithThumbnail(1, isOther));
        return withInserted(png(scene(120, 90, pngSecret, isOther)), afterHeader, chunk);
    });
    add("with a document inside", [](bool isOther) {
        const Bytes whole = png(scene(120, 90, pngSecret, isOther));
        const std::string data =
            base64({reinterpret_cast<const char*>(whole.data()), whole.size()});
        Bytes file = whole;
        codec::addPngText(file, documentKeyword, R"({"picture":{"data":")" + data + "\"}}");
        return file;
    });
    const auto raw = [](int depth, int colorType, int channels, bool isInterlaced) {
        return [=](bool isOther) {
            const gfx::Bitmap bitmap = scene(128, 96, pngSecret, isOther);
            codec::test::PngRecipe recipe{.width = 128,
                                          .height = 96,
                                          .bitDepth = depth,
                                          .colorType = colorType,
                                          .interlaced = isInterlaced,
                                          .rows = {}};
            for (int i = 0; i < 128 * 96; ++i) {
                for (int channel = 0; channel < channels; ++channel)
                    recipe.rows.insert(recipe.rows.end(), static_cast<std::size_t>(depth / 8),
                                       bitmap.data()[4 * i + 2 - channel]);
            }
            if (depth == 16) recipe.profile = profile();
            return makePng(recipe);
        };
    };
    add("grey", raw(8, 0, 1, false));
    add("of 16 bits with a profile", raw(16, 2, 3, false));
    add("interlaced", raw(8, 2, 3, true));
}

// A lossy file couples all its pixels: the secret is what is coded last, and the encoder is told to
// look at nothing but the block that it is at.
Bytes lossyWebp(bool isOther, const gfx::PixelRect& secret) {
    const gfx::Bitmap bitmap = scene(112, 80, secret, isOther);
    WebPConfig config;
    WebPConfigInit(&config);
    config.method = 0;
    config.segments = 1;
    config.sns_strength = 0;
    config.filter_strength = 0;
    config.quality = 80;
    WebPPicture picture;
    WebPPictureInit(&picture);
    picture.width = bitmap.width();
    picture.height = bitmap.height();
    WebPPictureImportBGRX(&picture, bitmap.data(), static_cast<int>(bitmap.stride()));
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;
    WebPEncode(&config, &picture);
    const Bytes file(writer.mem, writer.mem + writer.size);
    WebPMemoryWriterClear(&writer);
    WebPPictureFree(&picture);
    return file;
}

void addWebps(std::vector<PairSource>& sources) {
    for (const bool isTransparent : {false, true}) {
        sources.push_back({isTransparent ? "webp transparent" : "webp lossless",
                           [isTransparent](bool isOther) {
                               return codec::test::makeWebp(codec::test::makeLosslessChunk(
                                   scene(117, 83, pngSecret, isOther, isTransparent)));
                           },
                           pngSecret});
    }
    const gfx::PixelRect last{96, 64, 16, 16};
    // Colours have half the pixels and are smoothed, so that a pixel beside them is theirs, too.
    sources.push_back({"webp lossy",
                       [last](bool isOther) { return lossyWebp(isOther, last); },
                       {last.x - 2, last.y - 2, last.width + 2, last.height + 2}});
}

}  // namespace

std::vector<PairSource> pairSources() {
    std::vector<PairSource> sources;
    addPngs(sources);
    addWebps(sources);
    addJpegs(sources);
    return sources;
}

}  // namespace kalim::test
